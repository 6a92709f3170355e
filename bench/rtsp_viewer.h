#pragma once

#include "arrivals.h"

#include <boost/asio/awaitable.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::bench {

/// Plays one stream over RTSP, with RTP interleaved in the TCP connection, and counts pictures and bytes. It looks at
/// nothing of a packet but its RTP header, because it shares the processors with the server.
/// Thread: the one that runs the context. Source: RFC 2326, 10.12; RFC 3550, 5.1.
class RtspViewer {
public:
    /// path      of the stream
    /// password  of the user "admin"; empty: without a login
    RtspViewer(boost::asio::io_context& io, unsigned short port, std::string_view path, std::string password);

    /// Plays until the connection fails, which it throws as boost::system::system_error, or the server answers with an
    /// error or ends the stream, which it throws as std::runtime_error.
    boost::asio::awaitable<void> Play();

    /// Ends the connection, and with it Play.
    void Close();

    Arrivals& GetArrivals() { return arrivals; }

    Arrivals const& GetArrivals() const { return arrivals; }

    /// Bytes of RTP so far.
    std::size_t GetBytes() const { return bytes; }

    /// Packets that are missing in the sequence numbers so far.
    std::size_t GetLost() const { return lost; }

private:
    /// An RTSP response; both parts lie in the buffer until the next read.
    struct Response {
        std::string_view head;
        std::string_view body;
    };

    boost::asio::awaitable<void> Send(std::string_view method, std::string_view uri, std::string_view fields);
    boost::asio::awaitable<Response> Ask(std::string_view method, std::string_view uri, std::string_view fields = {});
    boost::asio::awaitable<Response> ReadResponse();
    boost::asio::awaitable<void> Receive();
    boost::asio::awaitable<void> KeepAlive();
    std::optional<Response> TakeUnit();
    void TakePacket(std::uint8_t channel, std::string_view packet);
    void LogIn(std::string_view head);
    std::string MakeLogin(std::string_view method, std::string_view uri) const;

    boost::asio::ip::tcp::socket socket;
    boost::asio::ip::tcp::endpoint server;
    std::string url;
    std::string password;
    std::string realm;
    std::string nonce;
    std::string session;
    int cseq = 0;
    std::vector<char> buffer;
    std::size_t begin = 0; ///< of what the buffer holds
    std::size_t end = 0;
    Arrivals arrivals;
    Arrivals::Clock::time_point received; ///< when the newest bytes of the buffer arrived
    Arrivals::Clock::time_point alive;    ///< when the server was last told that the viewer is there
    std::optional<std::uint16_t> sequence;
    std::size_t bytes = 0;
    std::size_t lost = 0;
};

} // namespace zarn::bench
