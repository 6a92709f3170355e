#pragma once

#include <zarn/network/interface.h>

#include <span>
#include <string>

namespace zarn::onvif::discovery {

/// What tells this machine from others.
struct Machine {
    std::string id;              ///< 32 hex digits; empty when the machine has none
    std::string hardwareAddress; ///< for example "aa:bb:cc:dd:ee:ff"; empty when it has none
    std::string hostname;        ///< empty when it has none
};

/// The hardware address that stays with a machine the longest: the lowest of its interfaces that are no loopback, those
/// that a manufacturer gave before those that software made up (IEEE 802, 8.4), since the latter change. Empty when no
/// interface has one of six bytes.
std::string ChooseHardwareAddress(std::span<network::Interface const> interfaces);

/// What this machine is: the id from /etc/machine-id, the hardware address (see ChooseHardwareAddress), the host name.
/// What cannot be read is empty. Thread: any.
Machine ReadMachine();

/// The address of the device as an endpoint, "urn:uuid:" and a UUID of version 5: the same for the same machine over
/// restarts and changes of its addresses, another one for another machine. It is derived from the first of id, hardware
/// address and host name that is there, as a hash that does not show it. Thread: any. Source: RFC 4122, 4.3.
std::string MakeEndpoint(Machine const& machine);

/// The endpoint of this machine, computed at the first call. Thread: any.
std::string const& GetEndpoint();

} // namespace zarn::onvif::discovery
