#include "host/web/reply.h"

#include <memory>
#include <utility>

namespace zarn::host::web {

using zarn::web::response::State;

Reply MakeTextReply(Status status, std::string text, std::map<std::string, std::string> fields) {
    fields.insert_or_assign("Content-Type", "text/plain; charset=utf-8");
    text += '\n';
    return {status, std::move(fields), {State::Complete, {std::make_shared<container::Buffer>(std::move(text))}}};
}

Reply MakeOverloadReply() {
    return MakeTextReply(Status::ServiceUnavailable, "The request cannot be worked on now; try again later.",
                         {{"Retry-After", "1"}});
}

} // namespace zarn::host::web
