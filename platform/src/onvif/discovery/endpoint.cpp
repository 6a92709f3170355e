#include <zarn/network/interface.h>
#include <zarn/network/local.h>
#include <zarn/onvif/discovery/endpoint.h>

#include <boost/uuid/name_generator_sha1.hpp>
#include <boost/uuid/uuid.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace zarn::onvif::discovery {

namespace {

/// The name space of this device's endpoints, drawn once: the same machine has other UUIDs for other purposes.
constexpr boost::uuids::uuid EndpointSpace{
    {0x3d, 0x8e, 0x61, 0x0b, 0x5a, 0x4c, 0x4f, 0x27, 0x9b, 0xd3, 0x70, 0x1e, 0xc2, 0x96, 0x45, 0xaf}};

/// Empty when the file has none, or has not been filled in yet.
std::string ReadMachineId() {
    constexpr std::size_t Length = 32;
    std::ifstream file("/etc/machine-id");
    std::string id(Length, '\0');
    if (!file.read(id.data(), Length)) return {};
    auto const valid = id.find_first_not_of("0123456789abcdef") == std::string::npos;
    auto const zero = id.find_first_not_of('0') == std::string::npos;
    return valid && !zero ? id : std::string();
}

/// True for a hardware address that software made up: the second bit of the first byte. Source: IEEE 802, 8.4.
bool IsLocallyAdministered(std::string_view address) {
    constexpr std::string_view DigitsWithTheBit = "2367abef";
    return address.size() > 1 && DigitsWithTheBit.find(address[1]) != std::string_view::npos;
}

std::string FindLowestHardwareAddress() {
    std::optional<std::pair<bool, std::string>> lowest;
    for (auto const& interface : network::ReadInterfaces()) {
        if (interface.loopback || interface.hardwareAddress.empty()) continue;
        std::pair candidate(IsLocallyAdministered(interface.hardwareAddress), interface.hardwareAddress);
        if (!lowest || candidate < *lowest) lowest = std::move(candidate);
    }
    return lowest ? lowest->second : std::string();
}

template <class Read>
std::string ReadIfPossible(Read read) {
    try {
        return read();
    } catch (std::system_error const&) {
        return {};
    }
}

} // namespace

Machine ReadMachine() {
    return {ReadMachineId(), ReadIfPossible(FindLowestHardwareAddress), ReadIfPossible(network::GetHostname)};
}

std::string MakeEndpoint(Machine const& machine) {
    // The kind of identity is a part of the name, so that a host name which looks like an id stays apart from it.
    auto name = "host-name:" + machine.hostname;
    if (!machine.hardwareAddress.empty()) name = "hardware-address:" + machine.hardwareAddress;
    if (!machine.id.empty()) name = "machine-id:" + machine.id;
    boost::uuids::name_generator_sha1 const generate(EndpointSpace);
    return "urn:uuid:" + to_string(generate(name));
}

std::string const& GetEndpoint() {
    static std::string const endpoint = MakeEndpoint(ReadMachine());
    return endpoint;
}

} // namespace zarn::onvif::discovery
