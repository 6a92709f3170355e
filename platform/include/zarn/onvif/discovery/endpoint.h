#pragma once

#include <string>

namespace zarn::onvif::discovery {

/// What tells this machine from others.
struct Machine {
    std::string id;              ///< 32 hex digits; empty when the machine has none
    std::string hardwareAddress; ///< for example "aa:bb:cc:dd:ee:ff"; empty when it has none
    std::string hostname;
};

/// What this machine is: the id from /etc/machine-id; the lowest hardware address of its interfaces, those that a
/// manufacturer gave before those that software made up, since the latter change; the host name. What cannot be read is
/// empty. Thread: any.
Machine ReadMachine();

/// The address of the device as an endpoint, "urn:uuid:" and a UUID of version 5: the same for the same machine over
/// restarts and changes of its addresses, another one for another machine. It is derived from the first of id, hardware
/// address and host name that is there, and none of them can be read from it. Thread: any. Source: RFC 4122, 4.3.
std::string MakeEndpoint(Machine const& machine);

/// The endpoint of this machine, as it was when first asked for. Thread: any.
std::string const& GetEndpoint();

} // namespace zarn::onvif::discovery
