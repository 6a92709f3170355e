#include "host/events/read_value.h"

#include "host/events/bounds.h"

#include <zarn/text/character.h>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/string.hpp>

#include <string_view>

namespace zarn::host::events {
namespace {} // namespace

std::string ReadText(boost::json::value const& value, Place const& place) {
    auto const* const string = value.if_string();
    if (!string) place.Refuse(Quote(value) + " is not a text");
    std::string_view const text(string->data(), string->size());
    if (text.size() > MaximumTextBytes)
        place.Refuse(Quote(value) + " is longer than " + std::to_string(MaximumTextBytes) + " bytes");
    if (!text::IsXml(text)) place.Refuse(Quote(value) + " holds a character that XML cannot carry");
    return std::string(text);
}

boost::json::array const& ReadList(boost::json::value const& value, Place const& place, std::size_t most) {
    auto const* const list = value.if_array();
    if (!list) place.Refuse(Quote(value) + " is not a list");
    if (list->size() > most)
        place.Refuse(std::to_string(list->size()) + " elements are more than " + std::to_string(most));
    return *list;
}

boost::json::object const& ReadObject(boost::json::value const& value, Place const& place) {
    auto const* const object = value.if_object();
    if (!object) place.Refuse(Quote(value) + " is not an object");
    return *object;
}

} // namespace zarn::host::events
