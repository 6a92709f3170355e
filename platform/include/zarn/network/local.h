#pragma once

#include <boost/asio/ip/address_v4.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace zarn::network {

/// The IPv4 address under which this machine is best reached: that of the interface which the default route uses, else
/// that of the first interface that is up and no loopback, else 127.0.0.1.
/// Looked up at each call (a few microseconds with a default route); sends nothing; never throws because of the
/// state of the network. Thread: any.
boost::asio::ip::address_v4 GetLocalIPAddress();

/// The beginning of an address of this machine, "SCHEME://ADDRESS:PORT" with GetLocalIPAddress(); the port is written
/// even when it is the scheme's default. Thread: any.
std::string MakeLocalUrl(std::string_view scheme, std::uint16_t port);

/// The same for a web server: "https" with TLS, else "http".
std::string MakeLocalWebUrl(bool tls, std::uint16_t port);

/// The host name as the kernel has it now. Throws std::system_error when it cannot be read. Thread: any.
std::string GetHostname();

} // namespace zarn::network
