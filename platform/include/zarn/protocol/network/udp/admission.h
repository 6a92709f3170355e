#pragma once

#include <zarn/network/interface.h>

#include <boost/asio/ip/address_v4.hpp>

#include <span>

namespace zarn::protocol::network::udp {

/// Lets receivers take datagrams from any source, not only from networks that are directly connected; for the whole
/// process and at once, also for receivers that run. Off unless set: whoever answers the whole world can be made to
/// flood somebody whose address was forged. The bounds of Throttle hold either way. Thread: any.
void AllowAnySource(bool allowed) noexcept;

/// What AllowAnySource was told last. Thread: any.
bool IsAnySourceAllowed() noexcept;

/// True when a datagram comes from nearby: its source is on a network of the interface that it came in on, or, on a
/// loopback interface, is an address of this machine.
/// interfaces  those of this machine as they are now
/// index       the kernel's index of the interface that the datagram came in on
bool IsNearby(std::span<zarn::network::Interface const> interfaces, unsigned index,
              boost::asio::ip::address_v4 const& source);

} // namespace zarn::protocol::network::udp
