#include "host/web/reply.h"

#include <utility>

namespace zarn::host::web {

Reply MakeTextReply(Reply::Status status, std::string text, std::map<std::string, std::string> fields) {
    fields.insert_or_assign("Content-Type", "text/plain; charset=utf-8");
    text += '\n';
    return {status, std::move(fields), {std::make_shared<container::Buffer>(std::move(text))}};
}

std::shared_ptr<zarn::web::response::Pending> MakeTextResponse(Reply::Status status, std::string text,
                                                               std::map<std::string, std::string> fields) {
    fields.insert_or_assign("Content-Type", "text/plain; charset=utf-8");
    return zarn::web::response::MakeComplete(status, std::move(fields), std::move(text) + '\n');
}

} // namespace zarn::host::web
