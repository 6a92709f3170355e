#include "http_client.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>
#include <sys/resource.h>

#include <charconv>
#include <chrono>
#include <cstddef>
#include <stdexcept>

namespace zarn::bench {

namespace asio = boost::asio;

namespace {

constexpr std::chrono::minutes LongestRun{2};
constexpr std::size_t LongestResponse = std::size_t{64} << 20; ///< in bytes

/// The length of a response's body. Throws std::runtime_error.
std::size_t ReadLength(std::string_view head) {
    constexpr std::string_view Name = "\r\nContent-Length: ";
    std::size_t length = 0;
    auto const at = head.find(Name);
    auto const* const text = head.data() + at + Name.size();
    if (!head.starts_with("HTTP/1.1 2") || at == head.npos ||
        std::from_chars(text, head.data() + head.size(), length).ec != std::errc() || length > LongestResponse)
        throw std::runtime_error("unexpected response: " + std::string(head.substr(0, head.find("\r\n\r\n"))));
    return length;
}

} // namespace

std::string MakeRequest(std::string_view target, std::string_view type, std::string_view body) {
    std::string request("POST ");
    request.append(target).append(" HTTP/1.1\r\nHost: host\r\nContent-Type: ").append(type);
    return request.append("\r\nContent-Length: ").append(std::to_string(body.size())).append("\r\n\r\n").append(body);
}

std::string MakeSoapRequest(std::string_view target, std::string_view operation) {
    std::string body(R"(<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope"><s:Body>)");
    return MakeRequest(target, "application/soap+xml", body.append(operation).append("</s:Body></s:Envelope>"));
}

std::string MakeSubscription(std::string_view arguments) {
    std::string operation(R"(<CreatePullPointSubscription xmlns="http://www.onvif.org/ver10/events/wsdl">)");
    operation.append(arguments).append("<InitialTerminationTime>PT1H</InitialTerminationTime>");
    return MakeSoapRequest("/onvif/events_service", operation.append("</CreatePullPointSubscription>"));
}

std::string ReadSubscription(std::string_view response) {
    auto const begin = response.find("/onvif/events_service/");
    auto const end = response.find('<', begin);
    if (begin == response.npos || end == response.npos) throw std::runtime_error("no subscription in the response");
    return std::string(response.substr(begin, end - begin));
}

HttpConnection::HttpConnection(asio::io_context& io, unsigned short port) : socket(io) {
    socket.connect({asio::ip::address_v4::loopback(), port});
    socket.set_option(asio::ip::tcp::no_delay(true));
}

asio::awaitable<void> HttpConnection::Send(std::string_view request) {
    co_await asio::async_write(socket, asio::buffer(request), asio::use_awaitable);
}

asio::awaitable<std::string_view> HttpConnection::Read() {
    received.clear();
    auto buffer = asio::dynamic_buffer(received, LongestResponse);
    auto const head = co_await asio::async_read_until(socket, buffer, "\r\n\r\n", asio::use_awaitable);
    auto const length = ReadLength(received);
    if (auto const missing = head + length - received.size(); received.size() < head + length)
        co_await asio::async_read(socket, buffer, asio::transfer_exactly(missing), asio::use_awaitable);
    co_return std::string_view(received).substr(head, length);
}

asio::awaitable<std::string_view> HttpConnection::Exchange(std::string_view request) {
    co_await Send(request);
    co_return co_await Read();
}

void RunToEnd(asio::io_context& io) {
    io.restart();
    io.run_for(LongestRun);
    if (!io.stopped()) throw std::runtime_error("the server did not answer in time");
}

void Rethrow(std::exception_ptr const& error) {
    if (error) std::rethrow_exception(error);
}

void RaiseDescriptorLimit() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

} // namespace zarn::bench
