#include "host/web/listener.h"

#include <boost/asio/strand.hpp>
#include <boost/system/system_error.hpp>

#include <stdexcept>
#include <string>

namespace zarn::host::web {

namespace asio = boost::asio;
using asio::ip::tcp;

Listener::Listener(asio::io_context& io, std::uint16_t port) : acceptor(asio::make_strand(io)) {
    try {
        acceptor.open(tcp::v4());
        // A restart must not have to wait for the connections of the last run to be forgotten.
        acceptor.set_option(tcp::acceptor::reuse_address(true));
        acceptor.bind(tcp::endpoint(tcp::v4(), port));
        acceptor.listen(asio::socket_base::max_listen_connections);
        this->port = acceptor.local_endpoint().port();
    } catch (boost::system::system_error const& error) {
        throw std::runtime_error("web port " + std::to_string(port) + " cannot be bound: " + error.code().message());
    }
}

} // namespace zarn::host::web
