#include "host/events/place.h"

#include "host/events/quote.h"
#include "host/events/read_error.h"

namespace zarn::host::events {

std::string Place::ToString() const {
    if (!outer) return "event " + std::to_string(index + 1);
    auto text = outer->ToString();
    if (key.data() == nullptr) return text + '[' + std::to_string(index) + ']';
    text += outer->outer ? "." : ": ";
    return text + QuoteKey(key);
}

void Place::Refuse(std::string const& why) const { throw ReadError(ToString() + ": " + why); }

} // namespace zarn::host::events
