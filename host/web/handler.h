#pragma once

#include "host/web/reply.h"

#include <zarn/protocol/network/http/method.h>
#include <zarn/web/request.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zarn::host::web {

/// What an answer says of the client's login.
enum class Login {
    Irrelevant, ///< not a failed login
    Wrong,      ///< the client tried a wrong password
};

/// What a handler gives for a request.
struct Answer {
    // NOLINTNEXTLINE(google-explicit-constructor): most answers are replies and nothing more
    Answer(Reply reply, Login login = Login::Irrelevant) : reply(std::move(reply)), login(login) {}

    Reply reply;
    Login login;
};

/// What the web server hands the requests of a route to. Thread: any number at once.
class Handler {
public:
    using Method = protocol::network::http::Method;
    using RequestPtr = std::shared_ptr<zarn::web::Request>;
    using Done = std::function<void(Answer)>;

    /// allowed  the methods that Serve() answers
    explicit Handler(std::vector<Method> allowed);

    virtual ~Handler() = default;
    Handler(Handler const&) = delete;
    Handler& operator=(Handler const&) = delete;

    /// Answers a request without waiting: a method that is not allowed with 405, OPTIONS with 204, both with the field
    /// Allow; the others by Serve().
    /// done  called once, on any thread, possibly before this returns, and before the server is destroyed; not at all
    ///       when this throws, or when the server ends before the answer is there
    /// Throws what Serve() throws; std::system_error: a thread that is needed cannot be started.
    void Handle(RequestPtr request, Done done);

private:
    /// Answers a request of an allowed method; for the rest like Handle().
    virtual void Serve(RequestPtr request, Done done) = 0;

    std::vector<Method> allowed;
    std::string allow; ///< the field of that name
};

/// Calls `done` with what `make` returns, for an answer that is made after Handle() has returned. When `make` throws,
/// that is logged and the answer is 500.
void Deliver(Handler::Done const& done, std::function<Answer()> const& make) noexcept;

} // namespace zarn::host::web
