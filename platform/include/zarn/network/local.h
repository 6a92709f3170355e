#pragma once

#include <boost/asio/ip/address_v4.hpp>

#include <string>

namespace zarn::network {

/// The IPv4 address under which this machine is best reached: that of the interface which the default route uses, else
/// that of the first interface that is up and no loopback, else 127.0.0.1.
/// Looked up anew at each call (a few microseconds with a default route); sends nothing; never throws because of the
/// state of the network. Thread: any.
boost::asio::ip::address_v4 GetLocalIPAddress();

/// The host name as the kernel has it now. Throws std::system_error when it cannot be read. Thread: any.
std::string GetHostname();

} // namespace zarn::network
