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

/// A response as a test looks at it.
struct RawResponse {
    unsigned status = 0;
    std::map<std::string, std::string> fields; ///< names in lower case
    std::string body;
};

/// A TCP connection to 127.0.0.1 on which a test says exactly what it wants to. Every wait ends after `limit` with a
/// std::runtime_error.
class RawConnection {
public:
    /// How much may be on its way to this client before it has read.
    enum class Window {
        Usual,
        Smallest, ///< some kilobytes, so that whoever answers more waits for it
    };

    explicit RawConnection(std::uint16_t port, std::chrono::milliseconds limit = std::chrono::seconds(30),
                           Window window = Window::Usual);

    /// Sends bytes. What a peer that has closed does not take is dropped.
    void Send(std::string_view bytes);

    /// Waits until the server's system has all that was sent, whether or not the server has read it.
    void AwaitArrival();

    /// Reads one response. `hasBody` false: that of a HEAD request.
    /// Throws std::runtime_error when the connection ends before.
    RawResponse Read(bool hasBody = true);

    /// The same, and none when the connection ends before.
    std::optional<RawResponse> ReadIfAny();

    /// Send, then Read.
    RawResponse Exchange(std::string_view bytes);

    /// Reads exactly as many bytes as `text` has, or up to the end of the connection.
    std::string ReadBytes(std::size_t count);

    /// Reads everything up to the end of the connection.
    std::string ReadAll();

    /// Whether something has come that is not read yet, or the end of the connection.
    bool HasUnread();

    /// Whether the server ends the connection within `limit`, with nothing more to read.
    bool IsClosedWithin(std::chrono::milliseconds limit);

    /// No more is sent.
    void EndSending();

    /// Vanishes: what was sent and is not read yet is lost, and so is what the server still sends. Nothing else may be
    /// called any more.
    void Reset();

private:
    bool Fill(std::chrono::milliseconds wait);
    RawResponse TakeResponse(std::size_t end, bool hasBody);

    boost::asio::io_context io;
    boost::asio::ip::tcp::socket socket;
    std::chrono::milliseconds limit;
    std::string received; ///< not looked at yet
};

/// A SOAP request of an operation without members of the device service.
std::string MakeSoapRequest(std::string_view operation, std::string_view fields = {});

} // namespace zarn::test
