#include "host/web/reply.h"

#include <chrono>
#include <utility>

namespace zarn::host::web {

using zarn::web::response::Pending;
using zarn::web::response::State;

Reply MakeTextReply(Reply::Status status, std::string text, std::map<std::string, std::string> fields) {
    fields.insert_or_assign("Content-Type", "text/plain; charset=utf-8");
    text += '\n';
    return {status, std::move(fields), {std::make_shared<container::Buffer>(std::move(text))}};
}

Pending::Data ToData(Reply reply) {
    return {reply.status, std::move(reply.fields), {State::Complete, std::move(reply.body)}};
}

std::shared_ptr<Pending> MakeTextResponse(Reply::Status status, std::string text,
                                          std::map<std::string, std::string> fields) {
    auto reply = MakeTextReply(status, std::move(text), std::move(fields));
    return std::make_shared<Pending>(
        status, [reply = std::move(reply)] { return ToData(reply); }, std::chrono::milliseconds(0));
}

} // namespace zarn::host::web
