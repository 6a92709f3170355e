// A minimal HTTP server on Beast: reads a request and returns a fixed body, with keep-alive and one thread per core.
// `fixed_answer_server BODY_BYTES` prints its port.

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/strand.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <thread>
#include <vector>

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;

class Session : public std::enable_shared_from_this<Session> {
public:
    Session(asio::ip::tcp::socket&& socket, std::string const& body) : stream(std::move(socket)), body(body) {}

    void Read() {
        request = {};
        http::async_read(stream, buffer, request, [self = shared_from_this()](beast::error_code error, std::size_t) {
            if (!error) self->Write();
        });
    }

private:
    void Write() {
        response = {http::status::ok, request.version()};
        response.set(http::field::content_type, "application/soap+xml; charset=utf-8");
        response.keep_alive(request.keep_alive());
        response.body() = body;
        response.prepare_payload();
        http::async_write(stream, response, [self = shared_from_this()](beast::error_code error, std::size_t) {
            if (!error && self->response.keep_alive()) self->Read();
        });
    }

    beast::tcp_stream stream;
    std::string const& body;
    beast::flat_buffer buffer;
    http::request<http::string_body> request;
    http::response<http::string_body> response;
};

void Accept(asio::ip::tcp::acceptor& acceptor, asio::io_context& context, std::string const& body) {
    acceptor.async_accept(asio::make_strand(context), [&](beast::error_code error, asio::ip::tcp::socket socket) {
        if (!error) std::make_shared<Session>(std::move(socket), body)->Read();
        Accept(acceptor, context, body);
    });
}

} // namespace

int main(int argc, char** argv) {
    std::string const body(argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 1024, 'x');
    asio::io_context context;
    asio::ip::tcp::acceptor acceptor(context, {asio::ip::make_address("127.0.0.1"), 0});
    Accept(acceptor, context, body);
    std::cout << acceptor.local_endpoint().port() << std::endl;
    std::vector<std::jthread> threads;
    for (unsigned i = 0; i < std::thread::hardware_concurrency(); ++i) threads.emplace_back([&] { context.run(); });
}
