#include "web/server_fixture.h"

#include "host/web/reply.h"
#include "support/eventually.h"

#include <mutex>
#include <utility>

namespace zarn::host::web {
namespace {

using zarn::web::response::State;

class EchoHandler final : public Handler {
public:
    EchoHandler() : Handler({Method::Post}) {}

private:
    void Serve(RequestPtr request, Done done) override {
        std::string text = std::string(request->GetTarget()) + '\n' + std::string(request->GetBody()) + '\n';
        for (auto const& field : request->GetFields()) text.append(field.first).append("\n");
        done(Reply(Status::Ok, {{"Connection", "close"}, {"Server", "echo"}},
                   {State::Complete, {std::make_shared<container::Buffer>(std::move(text))}}));
    }
};

class WaitHandler final : public Handler {
public:
    explicit WaitHandler(std::shared_ptr<Release> release) : Handler({Method::Get}), release(std::move(release)) {}

private:
    void Serve(RequestPtr /*request*/, Done done) override {
        release->Await([done = std::move(done)] {
            done(Reply(Status::Ok, {}, {State::Complete, {std::make_shared<container::Buffer>("waited")}}));
        });
    }

    std::shared_ptr<Release> release;
};

class BigHandler final : public Handler {
public:
    explicit BigHandler(std::size_t size) : Handler({Method::Get, Method::Head}), size(size) {}

private:
    void Serve(RequestPtr /*request*/, Done done) override {
        std::call_once(made, [this] { buffer = std::make_shared<container::Buffer>(std::string(size, 'x')); });
        done(Reply(Status::Ok, {}, {State::Complete, {buffer}}));
    }

    std::size_t const size;
    std::once_flag made; ///< on demand: most tests do not need the expensive buffer
    std::shared_ptr<container::Buffer> buffer;
};

} // namespace

void Release::Await(std::function<void()> answer) {
    {
        std::scoped_lock const lock(mutex);
        if (!isOpen) {
            waiting.push_back(std::move(answer));
            return;
        }
    }
    answer();
}

void Release::Open() {
    std::vector<std::function<void()>> released;
    {
        std::scoped_lock const lock(mutex);
        isOpen = true;
        std::swap(released, waiting);
    }
    for (auto const& answer : released) answer();
}

ServerTest::ServerTest() = default;

ServerTest::~ServerTest() = default;

void ServerTest::Start(Limits const& limits, std::shared_ptr<boost::asio::ssl::context> tls) {
    Listener listener(io, 0);
    port = listener.GetPort();
    server = std::make_unique<Server>(
        io, std::move(listener),
        Router({{"/echo/", std::make_shared<EchoHandler>()},
                {"/wait", std::make_shared<WaitHandler>(release)},
                {"/big", std::make_shared<BigHandler>(BigSize)}}),
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
