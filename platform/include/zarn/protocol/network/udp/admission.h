#pragma once

#include <zarn/network/interface.h>

#include <boost/asio/ip/address_v4.hpp>

#include <span>

namespace zarn::protocol::network::udp {

/// True when a datagram comes from nearby: its source is on a network of the interface that received it, or, on a
/// loopback interface, is an address of this machine.
/// interfaces  those of this machine as they are now
/// index       the kernel's index of the interface that received the datagram
bool IsNearby(std::span<zarn::network::Interface const> interfaces, unsigned index,
              boost::asio::ip::address_v4 const& source);

} // namespace zarn::protocol::network::udp
