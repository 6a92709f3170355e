// Bytes on a connection to the web server, before any other code parses requests.
#include "host/web/server.h"
#include "require.h"

#include <zarn/container/buffer.h>
#include <zarn/logging/logger.h>

#include <boost/algorithm/string/predicate.hpp>
#include <boost/asio/io_context.hpp>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

namespace zarn::fuzz {
namespace {

using host::web::MaximumTargetAndHost;

constexpr std::size_t MaximumLength = std::size_t{256} * 1024;
constexpr std::size_t BodyBytes = 4096;
constexpr std::chrono::seconds Deadline(8);

/// Number of inputs after which a well-behaved client must be served.
constexpr unsigned GoodClientEvery = 64;

constexpr std::array Statuses{"200", "204", "400", "404", "405", "411", "413", "414", "415", "417", "431", "505"};

bool IsFree(std::string_view text, std::string_view characters) {
    return text.find_first_of(characters) == std::string_view::npos;
}

/// Checks the request and returns its body.
class Echo final : public host::web::Handler {
public:
    Echo()
        : Handler({Method::Get, Method::Head, Method::Post, Method::Put, Method::Delete, Method::Connect,
                   Method::Options, Method::Trace, Method::Patch}) {}

private:
    void Serve(RequestPtr request, Done done) override {
        Require(request->GetTarget().starts_with('/'), "a target is in origin form");
        Require(request->GetTarget().size() <= MaximumTargetAndHost, "a target is short");
        Require(IsFree(request->GetTarget(), std::string_view("\0\r\n ", 4)), "a target is one word");
        Require(request->GetBody().size() <= BodyBytes, "a body is no longer than it may be");
        for (auto const& [name, value] : request->GetFields()) {
            Require(!name.empty() && IsFree(name, std::string_view("\0\r\n :", 5)), "a field has a name");
            Require(IsFree(value, std::string_view("\0\r\n", 3)), "a field is one line");
            Require(!IsOfConnection(name), "fields of the connection do not reach a handler");
        }
        done(host::web::Reply(
            host::web::Status::Ok, {{"Content-Type", "text/plain"}},
            {web::response::State::Complete, {std::make_shared<container::Buffer>(std::string(request->GetBody()))}}));
    }

    static bool IsOfConnection(std::string_view name) {
        constexpr std::array Names{"Connection", "Transfer-Encoding", "Keep-Alive", "Upgrade"};
        return std::ranges::any_of(Names, [&](char const* each) { return boost::iequals(each, name); });
    }
};

/// A connection whose every step ends at the deadline. libFuzzer's signals may interrupt its system calls.
class Client {
public:
    explicit Client(std::uint16_t port) : descriptor(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        int const on = 1;
        timeval const span{Deadline.count(), 0};
        setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &span, sizeof span);
        setsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &span, sizeof span);
        setsockopt(descriptor, IPPROTO_IP, IP_BIND_ADDRESS_NO_PORT, &on, sizeof on);
        auto const own = MakeAddress(ChooseAddress(), 0);
        auto const server = MakeAddress(INADDR_LOOPBACK, port);
        Require(bind(descriptor, reinterpret_cast<sockaddr const*>(&own), sizeof own) == 0, "an address can be taken");
        Require(Connect(server), "a client can connect");
    }

    ~Client() { close(descriptor); }

    Client(Client const&) = delete;
    Client& operator=(Client const&) = delete;

    /// Sends bytes; ignores a server that has closed the connection.
    void Send(std::string_view bytes) const {
        while (!bytes.empty()) {
            auto const count = send(descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (count < 0) {
                if (errno == EINTR) continue;
                Require(errno != EAGAIN, "a server takes what is sent, or closes");
                return;
            }
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
    }

    /// Shuts down sending and reads to the end.
    std::string Finish() const {
        shutdown(descriptor, SHUT_WR);
        std::string answer;
        std::array<char, 4096> chunk{};
        for (;;) {
            auto const count = recv(descriptor, chunk.data(), chunk.size(), 0);
            if (count < 0 && errno == EINTR) continue;
            Require(count >= 0 || errno != EAGAIN, "a connection ends in time");
            if (count <= 0) return answer;
            answer.append(chunk.data(), static_cast<std::size_t>(count));
        }
    }

private:
    /// Waits when all ports of the address are in use: at thousands of connections per second, the kernel holds closed
    /// ports for a while.
    bool Connect(sockaddr_in const& server) const {
        auto const deadline = std::chrono::steady_clock::now() + Deadline;
        while (connect(descriptor, reinterpret_cast<sockaddr const*>(&server), sizeof server) != 0) {
            if (errno == EINTR) continue; // repeating connect() continues the same attempt
            if (errno != EADDRNOTAVAIL || std::chrono::steady_clock::now() > deadline) {
                std::perror("connect");
                return false;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return true;
    }

    static sockaddr_in MakeAddress(std::uint32_t address, std::uint16_t port) {
        sockaddr_in made{};
        made.sin_family = AF_INET;
        made.sin_port = htons(port);
        made.sin_addr.s_addr = htonl(address);
        return made;
    }

    /// Varies the address, because the ports of a single one would run out within a minute: the kernel holds them for a
    /// while.
    static std::uint32_t ChooseAddress() {
        constexpr std::uint32_t Addresses = 200;
        static std::uint32_t next = 0;
        return INADDR_LOOPBACK + 1 + next++ % Addresses;
    }

    int descriptor;
};

/// A web server on loopback, shared by all inputs.
class Site {
public:
    Site() {
        logging::SetLevel(logging::Level::Critical);
        host::web::Listener listener(io, 0);
        port = listener.GetPort();
        host::web::Server::Options options;
        options.limits = {.connections = 8, .bodyBytes = BodyBytes};
        options.threads = 1;
        options.admission = admission;
        server = std::make_unique<host::web::Server>(io, std::move(listener),
                                                     host::web::Router({{"/", std::make_shared<Echo>()}}), options);
    }

    /// Sends the bytes, shuts down sending, and returns everything received until the connection ends.
    std::string Exchange(std::string_view bytes) const {
        Client const client(port);
        // Split some inputs into two segments.
        auto const first = bytes.size() % 3 == 0 ? bytes.size() / 2 : bytes.size();
        client.Send(bytes.substr(0, first));
        client.Send(bytes.substr(first));
        return client.Finish();
    }

    /// True if the server closes every connection in time.
    bool AwaitQuiet() const {
        auto const end = std::chrono::steady_clock::now() + Deadline;
        while (admission->GetConnections() > 0 || admission->GetExchanges() > 0) {
            if (std::chrono::steady_clock::now() > end) return false;
            std::this_thread::yield();
        }
        return true;
    }

private:
    boost::asio::io_context io;
    std::uint16_t port = 0;
    std::shared_ptr<host::web::Admission> admission = std::make_shared<host::web::Admission>();
    std::unique_ptr<host::web::Server> server;
};

void CheckAnswer(std::string_view answer) {
    if (answer.empty()) return; // the request was not complete
    constexpr std::string_view Continue = "HTTP/1.1 100 Continue\r\n\r\n";
    if (answer.starts_with(Continue)) return CheckAnswer(answer.substr(Continue.size()));
    Require(answer.starts_with("HTTP/1."), "an answer is HTTP");
    auto const status = answer.substr(std::min<std::size_t>(answer.size(), 9), 3);
    Require(std::ranges::find(Statuses, status) != Statuses.end(), "a status is one of the promised ones");
    Require(answer.find("\r\n\r\n") != std::string_view::npos, "an answer has a whole header");
}

void ServeGoodClient(Site& site) {
    auto const answer =
        site.Exchange("POST /a HTTP/1.1\r\nHost: h\r\nContent-Length: 5\r\nConnection: close\r\n\r\nhello");
    Require(answer.starts_with("HTTP/1.1 200 ") && answer.ends_with("hello"), "a well-behaved client is served");
}

} // namespace
} // namespace zarn::fuzz

/// For any input, the connection ends, every answer is HTTP with a documented status, no service receives a request
/// that exceeds a bound or has line ends in its fields, and the next client is served.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    using namespace zarn::fuzz;
    return CheckInput(data, size, MaximumLength, [](std::string_view bytes) {
        static Site site;
        static unsigned count = 0;
        CheckAnswer(site.Exchange(bytes));
        if (++count % GoodClientEvery == 0) ServeGoodClient(site);
        Require(site.AwaitQuiet(), "a connection that is over leaves nothing behind");
    });
}
