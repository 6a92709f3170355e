#include "support/raw_connection.h"

#include "support/eventually.h"

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <boost/asio/write.hpp>
#include <linux/sockios.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/ioctl.h>

#include <array>
#include <cstddef>
#include <sstream>
#include <stdexcept>

namespace zarn::test {

using boost::asio::ip::tcp;

RawConnection::RawConnection(std::uint16_t port, std::chrono::milliseconds limit, Window window)
    : socket(io), limit(limit) {
    socket.open(tcp::v4());
    if (window == Window::Smallest) {
        // The send buffer scales with the segment size, which is 64 KiB on loopback.
        constexpr int SmallestSegment = 536;
        constexpr int SmallBuffer = 4096;
        setsockopt(socket.native_handle(), IPPROTO_TCP, TCP_MAXSEG, &SmallestSegment, sizeof(SmallestSegment));
        socket.set_option(boost::asio::socket_base::receive_buffer_size(SmallBuffer));
    }
    socket.connect(tcp::endpoint(boost::asio::ip::address_v4::loopback(), port));
}

bool RawConnection::Send(std::string_view bytes) {
    boost::system::error_code error;
    boost::asio::write(socket, boost::asio::buffer(bytes), error);
    return !error;
}

void RawConnection::AwaitArrival() {
    auto const hasArrived = [this] {
        int unacknowledged = 0;
        return ioctl(socket.native_handle(), SIOCOUTQ, &unacknowledged) == 0 && unacknowledged == 0;
    };
    if (!Eventually(hasArrived, limit)) throw std::runtime_error("what was sent did not arrive");
}

bool RawConnection::Fill(std::chrono::milliseconds wait) {
    pollfd entry{socket.native_handle(), POLLIN, 0};
    if (poll(&entry, 1, static_cast<int>(wait.count())) != 1) throw std::runtime_error("nothing came in time");
    std::array<char, 65536> chunk{};
    boost::system::error_code error;
    std::size_t const count = socket.read_some(boost::asio::buffer(chunk), error);
    received.append(chunk.data(), count);
    return !error;
}

RawResponse RawConnection::Read(bool hasBody) {
    std::size_t end = received.find("\r\n\r\n");
    for (; end == std::string::npos; end = received.find("\r\n\r\n")) {
        if (!Fill(limit)) throw std::runtime_error("the connection ended before a response: '" + received + "'");
    }
    return TakeResponse(end, hasBody);
}

std::optional<RawResponse> RawConnection::ReadIfAny() {
    while (received.empty()) {
        if (!Fill(limit)) return std::nullopt;
    }
    return Read();
}

/// end  end of the header, excluding the blank line
RawResponse RawConnection::TakeResponse(std::size_t end, bool hasBody) {
    std::istringstream head(received.substr(0, end + 2));
    received.erase(0, end + 4);
    RawResponse response;
    std::string line;
    std::getline(head, line);
    response.status = static_cast<unsigned>(std::stoul(line.substr(line.find(' '))));
    while (std::getline(head, line)) {
        auto const colon = line.find(':');
        response.fields[boost::to_lower_copy(line.substr(0, colon))] = boost::trim_copy(line.substr(colon + 1));
    }
    if (hasBody && response.fields.contains("content-length")) {
        response.body = ReadBytes(std::stoul(response.fields["content-length"]));
    }
    return response;
}

RawResponse RawConnection::Exchange(std::string_view bytes) {
    Send(bytes);
    return Read();
}

std::string RawConnection::ReadBytes(std::size_t count) {
    while (received.size() < count && Fill(limit)) {
    }
    std::string const bytes = received.substr(0, count);
    received.erase(0, bytes.size());
    return bytes;
}

std::string RawConnection::ReadAll() {
    while (Fill(limit)) {
    }
    return std::exchange(received, {});
}

bool RawConnection::HasUnread() {
    pollfd entry{socket.native_handle(), POLLIN, 0};
    return !received.empty() || poll(&entry, 1, 0) == 1;
}

bool RawConnection::IsClosedWithin(std::chrono::milliseconds wait) {
    try {
        return !Fill(wait) && received.empty();
    } catch (std::runtime_error const&) {
        return false;
    }
}

void RawConnection::EndSending() {
    boost::system::error_code ignored;
    socket.shutdown(tcp::socket::shutdown_send, ignored);
}

void RawConnection::Reset() {
    boost::system::error_code ignored;
    socket.set_option(boost::asio::socket_base::linger(true, 0), ignored);
    socket.close(ignored);
}

std::string MakeSoapRequest(std::string_view operation, std::string_view fields) {
    std::string body = R"(<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope"><s:Body><)";
    body.append(operation).append(R"( xmlns="http://www.onvif.org/ver10/device/wsdl"/></s:Body></s:Envelope>)");
    std::string request =
        "POST /onvif/device_service HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/soap+xml\r\n";
    request.append(fields).append("Content-Length: ").append(std::to_string(body.size())).append("\r\n\r\n");
    return request + body;
}

} // namespace zarn::test
