#include <zarn/container/buffer.h>
#include <zarn/web/response/pending.h>

#include <utility>

namespace zarn::web::response {

Pending::Data::Data(Status status, std::map<std::string, std::string> fields, Body body)
    : status(status), fields(std::move(fields)), body(std::move(body)) {}

Pending::Pending(Status status, std::function<Data()> data, std::chrono::milliseconds timeout)
    : status(status), data(std::move(data)), timeout(timeout) {}

std::shared_ptr<Pending> MakeComplete(Pending::Status status, std::map<std::string, std::string> fields,
                                      std::string body) {
    Pending::Data::Body chunks{State::Complete, {}};
    if (!body.empty()) chunks.second.push_back(std::make_shared<container::Buffer>(std::move(body)));
    return std::make_shared<Pending>(
        status, [data = Pending::Data(status, std::move(fields), std::move(chunks))] { return data; },
        std::chrono::milliseconds(0));
}

} // namespace zarn::web::response
