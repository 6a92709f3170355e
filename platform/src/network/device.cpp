#include <zarn/network/device.h>
#include <zarn/network/interface.h>

#include <utility>

namespace zarn::network {

namespace {

class InterfaceDevice : public Device {
public:
    explicit InterfaceDevice(Interface interface) : interface(std::move(interface)) {}

    std::string GetName() const override { return interface.name; }

    std::string GetHardwareAddress() const override { return interface.hardwareAddress; }

    boost::asio::ip::address_v4 GetIPv4Address() const override { return interface.address; }

private:
    Interface interface;
};

} // namespace

std::vector<std::shared_ptr<Device>> GetDevices() {
    std::vector<std::shared_ptr<Device>> devices;
    for (auto& interface : ReadInterfaces()) {
        devices.push_back(std::make_shared<InterfaceDevice>(std::move(interface)));
    }
    return devices;
}

} // namespace zarn::network
