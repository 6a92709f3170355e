#pragma once

#include "host/web/server.h"
#include "support/raw_connection.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace zarn::host::web {

/// Holds answers back until the test opens it. Thread: any.
class Release {
public:
    /// Calls the function when it is open.
    void Await(std::function<void()> answer);
    void Open();

private:
    std::mutex mutex; ///< guards the following
    bool isOpen = false;
    std::vector<std::function<void()>> waiting;
};

/// A web server on loopback with three handlers: `/echo/` answers a POST with the target, the body and the names of the
/// received fields, one per line; `/wait` answers when the test releases it; `/big` answers a GET with BigSize bytes.
class ServerTest : public testing::Test {
protected:
    /// Timeout for events that must happen, even on an overloaded machine.
    static constexpr std::chrono::seconds Patience{60};

    static constexpr std::size_t BigSize = 32 * 1024 * 1024;

    ServerTest();
    ~ServerTest() override;

    void Start(Limits const& limits = {}, std::shared_ptr<boost::asio::ssl::context> tls = {});

    test::RawConnection Connect() const { return test::RawConnection(port, Patience); }

    /// A POST to /echo/a with additional fields and this body.
    static std::string Echo(std::string const& body = "hello", std::string const& fields = {});

    static constexpr char const* Wait = "GET /wait HTTP/1.1\r\nHost: h\r\n\r\n";

    /// Waits until the server has `count` exchanges in progress; false after Patience.
    bool AwaitExchanges(std::size_t count) const;
    bool AwaitConnections(std::size_t count) const;

    /// Makes the responses of /wait ready.
    void ReleaseAnswers() { release->Open(); }

    std::shared_ptr<Admission> admission = std::make_shared<Admission>();
    std::chrono::milliseconds lastRequestTime = Patience; ///< last request time of the server started by Start
    boost::asio::io_context io;
    std::shared_ptr<Release> release = std::make_shared<Release>(); ///< what it holds back belongs to `io`
    std::uint16_t port = 0;
    std::unique_ptr<Server> server;
};

} // namespace zarn::host::web
