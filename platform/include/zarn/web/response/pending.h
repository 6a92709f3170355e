#pragma once

#include <zarn/protocol/network/http/response/status.h>
#include <zarn/web/response/state.h>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zarn::container {
class Buffer;
}

namespace zarn::web::response {

/// A response that may not be ready yet. The holder asks until it is complete. If a job of a pool completes it, it is
/// complete when that job has ended (see job::EndNotice).
/// Thread: one at a time.
class Pending {
public:
    /// An HTTP status.
    using Status = protocol::network::http::response::Status;

    /// What one question yields.
    class Data {
    public:
        /// A state with the chunks of the body, which together are the whole body.
        using Body = std::pair<State, std::vector<std::shared_ptr<container::Buffer>>>;

        /// status  the HTTP status
        /// fields  header fields, name to value
        /// body    the state, and the body so far
        Data(Status status, std::map<std::string, std::string> fields, Body body);

        /// The HTTP status; Status::Provisional while the state is NotReady.
        Status GetStatus() const noexcept { return status; }

        /// The header fields, name to value.
        std::map<std::string, std::string> const& GetFields() const noexcept { return fields; }

        /// Whether the response is complete.
        State GetState() const noexcept { return body.first; }

        /// The chunks of the body.
        std::vector<std::shared_ptr<container::Buffer>> const& GetBody() const noexcept { return body.second; }

    private:
        Status status;
        std::map<std::string, std::string> fields;
        Body body;
    };

    /// status   what is known of the status now; Status::Provisional when nothing is
    /// data     called by GetData; must not wait
    /// timeout  when positive, the time after which the holder may give up; 0: never
    Pending(Status status, std::function<Data()> data, std::chrono::milliseconds timeout);

    Pending(Pending const&) = delete;
    Pending& operator=(Pending const&) = delete;

    /// What was known of the status when the response was made.
    Status GetStatus() const noexcept { return status; }

    /// Asks. Not to be called again after an answer in the state Complete. Lets through what the data function throws.
    Data GetData() const { return data(); }

    /// The time after which the holder may give up; 0: never.
    std::chrono::milliseconds GetTimeout() const noexcept { return timeout; }

private:
    Status status;
    std::function<Data()> data;
    std::chrono::milliseconds timeout;
};

/// A response that is complete at once, with `body` as its one chunk (none when it is empty). It may be asked
/// repeatedly.
std::shared_ptr<Pending> MakeComplete(Pending::Status status, std::map<std::string, std::string> fields = {},
                                      std::string body = {});

} // namespace zarn::web::response
