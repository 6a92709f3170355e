#pragma once

#include <boost/asio/ip/address_v4.hpp>

#include <memory>
#include <string>
#include <vector>

namespace zarn::network {

/// A network device of this machine. Thread: any.
class Device {
public:
    Device() = default;
    virtual ~Device() = default;
    Device(Device const&) = delete;
    Device& operator=(Device const&) = delete;

    /// For example "eth0".
    virtual std::string GetName() const = 0;

    /// For example "aa:bb:cc:dd:ee:ff"; empty when the device has none.
    virtual std::string GetHardwareAddress() const = 0;

    /// The first IPv4 address; 0.0.0.0 when the device has none.
    virtual boost::asio::ip::address_v4 GetIPv4Address() const = 0;
};

/// The devices of this machine as they are now, loopback included, in the order of the kernel's interface index.
/// Throws std::system_error when the kernel does not answer. Thread: any.
std::vector<std::shared_ptr<Device>> GetDevices();

} // namespace zarn::network
