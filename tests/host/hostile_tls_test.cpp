// Malformed TLS, and plain text, sent to a host that uses TLS.
#include "host/hostile_fixture.h"
#include "support/certificate.h"

#include <boost/asio/read_until.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/write.hpp>
#include <gmock/gmock.h>
#include <sys/resource.h>

#include <chrono>
#include <deque>
#include <memory>
#include <string>

namespace zarn::test {
namespace {

namespace asio = boost::asio;
using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// A client whose operations each time out after `Limit`.
class TlsClient {
public:
    /// A server that clients can block waits for several of their time limits in turn, which takes far longer.
    static constexpr auto Limit = 10s;

    explicit TlsClient(std::uint16_t port) : stream(io, context) {
        context.set_verify_mode(asio::ssl::verify_none);
        stream.next_layer().connect({asio::ip::address_v4::loopback(), port});
    }

    bool ShakeHands() {
        return Complete([this](auto done) { stream.async_handshake(asio::ssl::stream_base::client, done); });
    }

    /// Sends a request and returns the beginning of the answer; empty without an answer.
    std::string Ask(std::string const& bytes) {
        std::string answer;
        if (Complete([&](auto done) { asio::async_write(stream, asio::buffer(bytes), done); }))
            Complete([&](auto done) { asio::async_read_until(stream, asio::dynamic_buffer(answer), "\r\n", done); });
        return answer;
    }

    /// Sends bytes on the TCP connection, below TLS.
    void SendRaw(std::string const& bytes) {
        boost::system::error_code ignored;
        asio::write(stream.next_layer(), asio::buffer(bytes), ignored);
    }

private:
    /// True if the operation completes successfully within the time limit.
    template <class Begin>
    bool Complete(Begin begin) {
        boost::system::error_code result = asio::error::timed_out;
        begin([&result](boost::system::error_code error, std::size_t = 0) { result = error; });
        io.restart();
        io.run_for(Limit);
        if (result == asio::error::timed_out) {
            boost::system::error_code ignored;
            stream.next_layer().close(ignored);
            io.run();
            return false;
        }
        return !result;
    }

    asio::io_context io;
    asio::ssl::context context{asio::ssl::context::tls_client};
    asio::ssl::stream<asio::ip::tcp::socket> stream;
};

class HostileTls : public testing::Test {
protected:
    void ExpectServed() const {
        auto const before = host.GetProcess().GetProcessorTime();
        TlsClient client(host.GetPort());
        EXPECT_TRUE(client.ShakeHands());
        EXPECT_THAT(client.Ask(Health), StartsWith("HTTP/1.1 200 "));
        EXPECT_LT(host.GetProcess().GetProcessorTime() - before, 1s);
    }

    /// Expects that the number of connections is back to its initial value.
    void ExpectAllClosed() const {
        auto const use = AwaitResourceUse(
            host.GetProcess().GetId(), [this](auto const& now) { return now.descriptors <= idle.descriptors; },
            Process::Generous);
        EXPECT_LE(use.descriptors, idle.descriptors);
    }

    std::shared_ptr<TemporaryFolder> folder = std::make_shared<TemporaryFolder>();
    Certificate files{*folder};
    HostProcess host{{.arguments = {"--set", "settings.tls.certificate=" + files.certificate, "--set",
                                    "settings.tls.private_key=" + files.key, "--set",
                                    "settings.limits.header_seconds=3", "--set", "settings.limits.idle_seconds=3"},
                      .folder = folder}};
    ResourceUse idle = ReadResourceUse(host.GetProcess().GetId());
};

TEST_F(HostileTls, GetsNoHttpResponseWithoutAHandshake) {
    for (auto const& bytes :
         {Health, Repeat("\r\n", 1000), std::string(100'000, '\0'),
          std::string("\x80\x2e\x01\x00\x02", 5) + Repeat("a", 44),
          std::string("\x16\x03\x01\xff\xff", 5) + Repeat("a", 65'535), Repeat("\x15\x03\x03\x00\x02\x01", 1000)}) {
        RawConnection connection(host.GetPort());
        connection.Send(bytes);
        EXPECT_THAT(connection.ReadAll(), Not(HasSubstr("HTTP")));
        ExpectServed();
    }
    ExpectAllClosed();
}

TEST_F(HostileTls, IsDisconnectedWhenTheHandshakeStalls) {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
    std::deque<RawConnection> half;
    for (int i = 0; i < 200; ++i)
        half.emplace_back(host.GetPort()).Send(std::string("\x16\x03\x01\x01\x00\x01\x00", 7));
    ExpectServed();
    ExpectAllClosed();
}

TEST_F(HostileTls, Gets408ForALateRequest) {
    TlsClient client(host.GetPort());
    ASSERT_TRUE(client.ShakeHands());
    EXPECT_THAT(client.Ask("GET /api"), StartsWith("HTTP/1.1 408 "));
}

TEST_F(HostileTls, IsDisconnectedForPlaintextAfterTheHandshake) {
    TlsClient client(host.GetPort());
    ASSERT_TRUE(client.ShakeHands());
    client.SendRaw(Health);
    ExpectServed();
    ExpectAllClosed();
}

} // namespace
} // namespace zarn::test
