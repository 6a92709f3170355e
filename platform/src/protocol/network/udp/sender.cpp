#include <zarn/container/buffer.h>
#include <zarn/protocol/network/udp/sender.h>

#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>

#include <cstddef>
#include <string_view>
#include <utility>

namespace zarn::protocol::network::udp {

Sender::Sender(boost::asio::io_context& ioContext, boost::asio::ip::udp::endpoint endpoint)
    : socket(ioContext), endpoint(std::move(endpoint)) {}

Sender::~Sender() = default;

void Sender::Send(std::shared_ptr<container::Buffer> buffer,
                  std::function<void(boost::system::error_code const&)> completion) {
    boost::system::error_code error;
    if (!socket.is_open()) socket.open(endpoint.protocol(), error);
    if (error) {
        boost::asio::post(socket.get_executor(), [error, completion = std::move(completion)] { completion(error); });
        return;
    }
    auto const bytes = boost::asio::buffer(buffer->ToStringView());
    socket.async_send_to(bytes, endpoint,
                         [buffer = std::move(buffer), completion = std::move(completion)](
                             boost::system::error_code const& result, std::size_t) { completion(result); });
}

} // namespace zarn::protocol::network::udp
