#include "rtsp_viewer.h"

#include <zarn/authentication/digest.h>
#include <zarn/authentication/ha1.h>

#include <boost/asio/buffer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <stdexcept>
#include <utility>

namespace zarn::bench {

namespace asio = boost::asio;
using namespace std::chrono_literals;

namespace {

/// Holds the largest packet with its frame, and the responses before it.
constexpr std::size_t BufferSize = std::size_t{128} << 10;

constexpr auto KeepAlivePeriod = 20s; ///< a third of the time after which servers end a session

constexpr std::uint8_t RtpChannel = 0;
constexpr std::size_t FrameHeader = 4; ///< "$", channel, length
constexpr std::size_t RtpHeader = 12;

std::uint16_t ReadNumber(std::string_view bytes) {
    return static_cast<std::uint16_t>(static_cast<std::uint8_t>(bytes[0]) << 8 | static_cast<std::uint8_t>(bytes[1]));
}

/// The text between two others; empty when there is none.
std::string_view FindBetween(std::string_view text, std::string_view before, std::string_view after) {
    auto const at = text.find(before);
    if (at == text.npos) return {};
    text.remove_prefix(at + before.size());
    return text.substr(0, text.find_first_of(after));
}

std::size_t ReadContentLength(std::string_view head) {
    auto const text = FindBetween(head, "\r\nContent-Length: ", "\r");
    std::size_t length = 0;
    std::from_chars(text.data(), text.data() + text.size(), length);
    return length;
}

/// The address of the first video track of a session description. Source: RFC 2326, C.1.1.
std::string FindTrack(std::string_view description, std::string const& base) {
    auto const video = description.find("m=video");
    auto const control =
        video == description.npos ? std::string_view() : FindBetween(description.substr(video), "a=control:", "\r\n");
    if (control.empty()) throw std::runtime_error("the description has no video: " + std::string(description));
    return control.starts_with("rtsp:") ? std::string(control) : base + '/' + std::string(control);
}

} // namespace

RtspViewer::RtspViewer(asio::io_context& io, unsigned short port, std::string_view path, std::string password)
    : socket(io),
      server(asio::ip::address_v4::loopback(), port),
      url("rtsp://127.0.0.1:" + std::to_string(port) + std::string(path)),
      password(std::move(password)),
      buffer(BufferSize),
      arrivals(Arrivals::Clock::now()) {}

asio::awaitable<void> RtspViewer::Play() {
    arrivals = Arrivals(Arrivals::Clock::now());
    co_await socket.async_connect(server, asio::use_awaitable);
    socket.set_option(asio::ip::tcp::no_delay(true));
    co_await Ask("OPTIONS", url);
    auto const description = co_await Ask("DESCRIBE", url, "Accept: application/sdp\r\n");
    auto const base = FindBetween(description.head, "\r\nContent-Base: ", "\r");
    auto const track =
        FindTrack(description.body, base.empty() ? url : std::string(base.substr(0, base.find_last_not_of('/') + 1)));
    auto const setup = co_await Ask("SETUP", track, "Transport: RTP/AVP/TCP;unicast;interleaved=0-1\r\n");
    session = FindBetween(setup.head, "\r\nSession: ", ";\r");
    co_await Ask("PLAY", url); // without a range: no server has to seek in what others watch
    alive = Arrivals::Clock::now();
    for (;;) {
        while (auto const response = TakeUnit()) {
            // Servers end a stream by a request of theirs or by closing the connection; everything else answers a
            // request that keeps the session alive.
            if (!response->head.starts_with("RTSP/")) throw std::runtime_error("the server ended the stream");
        }
        co_await KeepAlive();
        co_await Receive();
    }
}

void RtspViewer::Close() {
    boost::system::error_code ignored;
    socket.close(ignored);
}

asio::awaitable<void> RtspViewer::KeepAlive() {
    if (received - alive < KeepAlivePeriod) co_return;
    alive = received;
    co_await Send("GET_PARAMETER", url, {});
}

asio::awaitable<void> RtspViewer::Send(std::string_view method, std::string_view uri, std::string_view fields) {
    std::string request(method);
    request.append(" ").append(uri).append(" RTSP/1.0\r\nCSeq: ").append(std::to_string(++cseq)).append("\r\n");
    if (!session.empty()) request.append("Session: ").append(session).append("\r\n");
    if (!nonce.empty()) request.append(MakeLogin(method, uri));
    request.append(fields).append("\r\n");
    co_await asio::async_write(socket, asio::buffer(request), asio::use_awaitable);
}

asio::awaitable<RtspViewer::Response> RtspViewer::Ask(std::string_view method, std::string_view uri,
                                                      std::string_view fields) {
    co_await Send(method, uri, fields);
    auto response = co_await ReadResponse();
    if (response.head.starts_with("RTSP/1.0 401") && nonce.empty() && !password.empty()) {
        LogIn(response.head);
        co_await Send(method, uri, fields);
        response = co_await ReadResponse();
    }
    if (!response.head.starts_with("RTSP/1.0 200"))
        throw std::runtime_error(std::string(method) + ": " +
                                 std::string(response.head.substr(0, response.head.find('\r'))));
    co_return response;
}

asio::awaitable<RtspViewer::Response> RtspViewer::ReadResponse() {
    for (;;) {
        if (auto const response = TakeUnit()) co_return *response;
        co_await Receive();
    }
}

asio::awaitable<void> RtspViewer::Receive() {
    std::move(buffer.begin() + static_cast<std::ptrdiff_t>(begin), buffer.begin() + static_cast<std::ptrdiff_t>(end),
              buffer.begin());
    end -= std::exchange(begin, 0);
    if (end == buffer.size()) throw std::runtime_error("the server sends more than a packet may hold");
    end += co_await socket.async_read_some(asio::buffer(buffer.data() + end, buffer.size() - end), asio::use_awaitable);
    received = Arrivals::Clock::now();
}

/// Takes complete packets from the buffer until a message comes, which it returns; nothing when the rest is incomplete.
std::optional<RtspViewer::Response> RtspViewer::TakeUnit() {
    for (;;) {
        std::string_view const rest(buffer.data() + begin, end - begin);
        if (!rest.starts_with('$')) break;
        if (rest.size() < FrameHeader) return std::nullopt;
        std::size_t const length = ReadNumber(rest.substr(2));
        if (rest.size() < FrameHeader + length) return std::nullopt;
        TakePacket(static_cast<std::uint8_t>(rest[1]), rest.substr(FrameHeader, length));
        begin += FrameHeader + length;
    }
    std::string_view const rest(buffer.data() + begin, end - begin);
    auto const head = rest.find("\r\n\r\n");
    if (head == rest.npos) return std::nullopt;
    auto const size = head + 4;
    auto const length = ReadContentLength(rest.substr(0, size));
    if (rest.size() < size + length) return std::nullopt;
    begin += size + length;
    return Response{rest.substr(0, size), rest.substr(size, length)};
}

void RtspViewer::TakePacket(std::uint8_t channel, std::string_view packet) {
    if (channel != RtpChannel || packet.size() < RtpHeader) return;
    bytes += packet.size();
    auto const number = ReadNumber(packet.substr(2));
    if (sequence) lost += static_cast<std::uint16_t>(number - *sequence - 1);
    sequence = number;
    bool const isLastOfPicture = (static_cast<std::uint8_t>(packet[1]) & 0x80) != 0; // the marker bit
    if (isLastOfPicture) arrivals.Add(received);
}

void RtspViewer::LogIn(std::string_view head) {
    realm = FindBetween(head, "realm=\"", "\"");
    nonce = FindBetween(head, "nonce=\"", "\"");
}

std::string RtspViewer::MakeLogin(std::string_view method, std::string_view uri) const {
    auto const ha1 = authentication::MakeHa1("admin", realm, password);
    auto const response = authentication::MakeDigestResponse({ha1, method, uri, nonce, {}, {}, {}});
    std::string field("Authorization: Digest username=\"admin\", realm=\"");
    field.append(realm).append("\", nonce=\"").append(nonce).append("\", uri=\"").append(uri);
    return field.append("\", response=\"").append(response).append("\"\r\n");
}

} // namespace zarn::bench
