#include "host/web/reply.h"

#include <chrono>
#include <utility>

namespace zarn::host::web {

using zarn::web::response::Pending;
using zarn::web::response::State;

Reply MakeTextReply(Status status, std::string text, std::map<std::string, std::string> fields) {
    fields.insert_or_assign("Content-Type", "text/plain; charset=utf-8");
    text += '\n';
    return {status, std::move(fields), {State::Complete, {std::make_shared<container::Buffer>(std::move(text))}}};
}

std::shared_ptr<Pending> MakeTextResponse(Status status, std::string text, std::map<std::string, std::string> fields) {
    return std::make_shared<Pending>(
        status, [reply = MakeTextReply(status, std::move(text), std::move(fields))] { return reply; },
        std::chrono::milliseconds(0));
}

} // namespace zarn::host::web
