#include "web/server_fixture.h"

#include "host/web/reply.h"
#include "support/eventually.h"

#include <chrono>
#include <mutex>
#include <utility>

namespace zarn::host::web {
namespace {

using namespace std::chrono_literals;
using zarn::web::response::Pending;
using zarn::web::response::State;

class EchoService final : public zarn::web::Service {
public:
    Response Post(std::shared_ptr<zarn::web::Request> request) override {
        std::string text = std::string(request->GetTarget()) + '\n' + std::string(request->GetBody()) + '\n';
        for (auto const& field : request->GetFields()) text.append(field.first).append("\n");
        return zarn::web::response::MakeComplete(Status::Ok, {{"Connection", "close"}, {"Server", "echo"}},
                                                 std::move(text));
    }
};

class WaitService final : public zarn::web::Service {
public:
    explicit WaitService(std::shared_ptr<std::atomic<bool>> released)
        : Service({Method::Get}), released(std::move(released)) {}

    Response Get(std::shared_ptr<zarn::web::Request> /*request*/) override {
        return std::make_shared<Pending>(
            Status::Provisional,
            [released = released]() -> Pending::Data {
                if (!*released) return {Status::Provisional, {}, {State::NotReady, {}}};
                return {Status::Ok, {}, {State::Complete, {std::make_shared<container::Buffer>("waited")}}};
            },
            0ms);
    }

private:
    std::shared_ptr<std::atomic<bool>> released;
};

class BigService final : public zarn::web::Service {
public:
    explicit BigService(std::size_t size) : Service({Method::Get, Method::Head}), size(size) {}

    Response Get(std::shared_ptr<zarn::web::Request> /*request*/) override {
        std::call_once(made, [this] { buffer = std::make_shared<container::Buffer>(std::string(size, 'x')); });
        return std::make_shared<Pending>(
            Status::Ok,
            [buffer = buffer]() -> Pending::Data {
                return {Status::Ok, {}, {State::Complete, {buffer}}};
            },
            0ms);
    }

    Response Head(std::shared_ptr<zarn::web::Request> request) override { return Get(std::move(request)); }

private:
    std::size_t const size;
    std::once_flag made; ///< on demand: most tests do not need the expensive buffer
    std::shared_ptr<container::Buffer> buffer;
};

} // namespace

ServerTest::ServerTest() = default;

ServerTest::~ServerTest() = default;

void ServerTest::Start(Limits const& limits, std::shared_ptr<boost::asio::ssl::context> tls) {
    Listener listener(io, 0);
    port = listener.GetPort();
    server = std::make_unique<Server>(
        io, std::move(listener),
        Router({{"/echo/", std::make_shared<EchoService>()},
                {"/wait", std::make_shared<WaitService>(released)},
                {"/big", std::make_shared<BigService>(BigSize)}}),
        Server::Options{
            .limits = limits, .tls = std::move(tls), .lastRequestTime = lastRequestTime, .admission = admission});
}

std::string ServerTest::Echo(std::string const& body, std::string const& fields) {
    return "POST /echo/a HTTP/1.1\r\nHost: h\r\n" + fields + "Content-Length: " + std::to_string(body.size()) +
           "\r\n\r\n" + body;
}

bool ServerTest::AwaitExchanges(std::size_t count) const {
    return test::Eventually([&] { return admission->GetExchanges() == count; }, Patience);
}

bool ServerTest::AwaitConnections(std::size_t count) const {
    return test::Eventually([&] { return admission->GetConnections() == count; }, Patience);
}

} // namespace zarn::host::web
