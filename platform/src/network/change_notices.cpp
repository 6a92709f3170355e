#include "network/change_notices.h"

#include <zarn/io/unique_descriptor.h>

#include <boost/asio/error.hpp>
#include <boost/system/error_code.hpp>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace zarn::network {

ChangeNotices::ChangeNotices(boost::asio::any_io_executor const& executor) : netlink(executor), settling(executor) {}

void ChangeNotices::Open() {
    constexpr auto What = "Failed to watch the network interfaces";
    io::UniqueDescriptor descriptor(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE));
    if (!descriptor) throw std::system_error(errno, std::generic_category(), What);
    netlink.assign(descriptor.Get()); // which does not take it over when it throws
    static_cast<void>(descriptor.Release());
    sockaddr_nl groups{};
    groups.nl_family = AF_NETLINK;
    groups.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR;
    if (bind(netlink.native_handle(), reinterpret_cast<sockaddr const*>(&groups), sizeof(groups)) != 0) {
        auto const reason = errno;
        Close();
        throw std::system_error(reason, std::generic_category(), What);
    }
}

void ChangeNotices::Close() noexcept {
    boost::system::error_code ignored;
    netlink.close(ignored);
    settling.cancel();
}

void ChangeNotices::Wait(std::function<void()> handler) {
    netlink.async_wait(boost::asio::posix::stream_descriptor::wait_read,
                       [this, handler = std::move(handler)](boost::system::error_code const&) mutable {
                           if (netlink.is_open()) Settle(std::move(handler));
                       });
}

void ChangeNotices::Settle(std::function<void()> handler) {
    settling.expires_after(Settling);
    settling.async_wait([this, handler = std::move(handler)](boost::system::error_code const&) {
        if (!netlink.is_open()) return;
        Drain();
        handler();
    });
}

void ChangeNotices::Drain() noexcept {
    // What changed is read elsewhere, whole: a notice may be lost when there are many (ENOBUFS tells that some were).
    constexpr int MaximumAtOnce = 1024;
    std::array<char, 1> first{};
    for (int i = 0; i < MaximumAtOnce; ++i) {
        auto const size = recv(netlink.native_handle(), first.data(), first.size(), MSG_TRUNC);
        if (size < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) return;
    }
}

} // namespace zarn::network
