#include "unit/bench/scripted_server.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/write.hpp>

#include <cstddef>
#include <utility>

namespace zarn::test {

namespace asio = boost::asio;

ScriptedServer::ScriptedServer(std::vector<std::string> responses)
    : acceptor(io, {asio::ip::address_v4::loopback(), 0}),
      thread([this, texts = std::move(responses)] { Serve(texts); }) {}

ScriptedServer::~ScriptedServer() {
    if (thread.joinable()) thread.join();
}

std::vector<std::string> const& ScriptedServer::GetRequests() {
    if (thread.joinable()) thread.join();
    return requests;
}

void ScriptedServer::Serve(std::vector<std::string> const& responses) {
    asio::ip::tcp::socket socket(io);
    boost::system::error_code error;
    acceptor.accept(socket, error);
    std::string buffer;
    for (auto const& response : responses) {
        auto const length = asio::read_until(socket, asio::dynamic_buffer(buffer), "\r\n\r\n", error);
        if (error) return;
        requests.push_back(buffer.substr(0, length));
        buffer.erase(0, length);
        asio::write(socket, asio::buffer(response), error);
    }
    // Ends without a reset, so that the client still reads everything.
    socket.shutdown(asio::ip::tcp::socket::shutdown_send, error);
    while (!error) {
        socket.read_some(asio::buffer(buffer.data(), buffer.size()), error);
        buffer.resize(4096);
    }
}

} // namespace zarn::test
