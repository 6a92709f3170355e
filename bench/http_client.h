#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <exception>
#include <string>
#include <string_view>

namespace zarn::bench {

/// A POST request as bytes.
/// target  path and query
/// type    of the body
std::string MakeRequest(std::string_view target, std::string_view type, std::string_view body);

/// A POST request with a SOAP message around an operation.
std::string MakeSoapRequest(std::string_view target, std::string_view operation);

/// The request for a subscription that lasts an hour.
/// arguments  further elements of the operation, such as a filter
std::string MakeSubscription(std::string_view arguments = {});

/// The path and query of the subscription in the response to MakeSubscription. Throws std::runtime_error without one.
std::string ReadSubscription(std::string_view response);

/// A keep-alive connection to a server on this machine. It parses as little as it can, because it shares the processors
/// with the server. Thread: the one that runs the context.
class HttpConnection {
public:
    /// Connects. Throws boost::system::system_error.
    HttpConnection(boost::asio::io_context& io, unsigned short port);

    /// Sends a complete request.
    boost::asio::awaitable<void> Send(std::string_view request);

    /// Reads a response and returns its body, which is valid until the next call. Throws std::runtime_error unless the
    /// status is 2xx and the length is given; boost::system::system_error when the connection ends.
    boost::asio::awaitable<std::string_view> Read();

    /// Sends a request and reads its response.
    boost::asio::awaitable<std::string_view> Exchange(std::string_view request);

private:
    boost::asio::ip::tcp::socket socket;
    std::string received;
};

/// Runs the context until nothing is left to do. Throws what ends a coroutine, and std::runtime_error when that takes
/// more than two minutes: a server that does not answer must not block the measurement.
void RunToEnd(boost::asio::io_context& io);

/// For co_spawn: lets RunToEnd throw what ended a coroutine.
void Rethrow(std::exception_ptr const& error);

/// Raises the number of descriptors that the process may have to the most that it is allowed.
void RaiseDescriptorLimit();

} // namespace zarn::bench
