#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace zarn::test {

/// A parsed HTTP response.
struct RawResponse {
    unsigned status = 0;
    std::map<std::string, std::string> fields; ///< names in lower case
    std::string body;
};

/// A TCP connection to 127.0.0.1 that sends exactly the bytes given by the test. Every wait that exceeds `limit` throws
/// std::runtime_error.
class RawConnection {
public:
    /// How much the server can send before this client reads.
    enum class Window {
        Usual,
        Smallest, ///< a few kilobytes; a server with a larger answer has to wait
    };

    explicit RawConnection(std::uint16_t port, std::chrono::milliseconds limit = std::chrono::seconds(30),
                           Window window = Window::Usual);

    /// Sends bytes; drops them and returns false when the peer has closed the connection.
    bool Send(std::string_view bytes);

    /// Waits until all sent bytes have reached the server's kernel, whether or not the server has read them.
    void AwaitArrival();

    /// Reads one response. `hasBody` is false for the response to a HEAD request.
    /// Throws std::runtime_error when the connection ends first.
    RawResponse Read(bool hasBody = true);

    /// Like Read, but returns nullopt when the connection ends first.
    std::optional<RawResponse> ReadIfAny();

    /// Send, then Read.
    RawResponse Exchange(std::string_view bytes);

    /// Reads `count` bytes, or fewer when the connection ends first.
    std::string ReadBytes(std::size_t count);

    /// Reads everything up to the end of the connection.
    std::string ReadAll();

    /// True if unread bytes or the end of the connection have arrived.
    bool HasUnread();

    /// True if the server closes the connection within `limit` without sending anything more.
    bool IsClosedWithin(std::chrono::milliseconds limit);

    /// Shuts down the sending direction.
    void EndSending();

    /// Resets the connection: unread bytes in both directions are lost. No other call may follow.
    void Reset();

private:
    bool Fill(std::chrono::milliseconds wait);
    RawResponse TakeResponse(std::size_t end, bool hasBody);

    boost::asio::io_context io;
    boost::asio::ip::tcp::socket socket;
    std::chrono::milliseconds limit;
    std::string received; ///< received but not yet consumed
};

/// A SOAP request to the device service for an operation without parameters.
std::string MakeSoapRequest(std::string_view operation, std::string_view fields = {});

} // namespace zarn::test
