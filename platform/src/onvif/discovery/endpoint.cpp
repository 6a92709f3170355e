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

/// Six bytes that are not all zero; tunnels have something else.
bool IsHardwareAddress(std::string_view address) {
    return address.size() == std::string_view("aa:bb:cc:dd:ee:ff").size() &&
           address.find_first_not_of("0:") != std::string_view::npos;
}

/// The second bit of the first byte.
bool IsMadeUpBySoftware(std::string_view address) {
    constexpr std::string_view DigitsWithTheBit = "2367abef";
    return DigitsWithTheBit.find(address[1]) != std::string_view::npos;
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

std::string ChooseHardwareAddress(std::span<network::Interface const> interfaces) {
    std::optional<std::pair<bool, std::string>> lowest;
    for (auto const& interface : interfaces) {
        if (interface.loopback || !IsHardwareAddress(interface.hardwareAddress)) continue;
        std::pair candidate(IsMadeUpBySoftware(interface.hardwareAddress), interface.hardwareAddress);
        if (!lowest || candidate < *lowest) lowest = std::move(candidate);
    }
    return lowest ? lowest->second : std::string();
}

Machine ReadMachine() {
    return {ReadMachineId(), ReadIfPossible([] { return ChooseHardwareAddress(network::ReadInterfaces()); }),
            ReadIfPossible(network::GetHostname)};
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
