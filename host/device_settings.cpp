#include "host/device_settings.h"

#include <zarn/configuration/node/primitive.h>
#include <zarn/onvif/settings.h>

namespace zarn::host {
namespace {

using configuration::node::Read;
using configuration::schema::Line;

constexpr char DiscoveryAnywherePath[] = "settings.onvif.discovery_anywhere";

} // namespace

std::vector<configuration::Schema> MakeDeviceSchemas() {
    return {
        {"identity.manufacturer", "Zarnsuite", "Who made the device", {}, Line()},
        {"identity.model", "zarn-host", "The model of the device", {}, Line()},
        {"identity.firmware", ZARN_VERSION, "The version of the device's software", {}, Line()},
        {"identity.hardware", "generic", "The hardware of the device", {}, Line()},
        {"identity.name", "zarn-host", "The name of the device", {}, Line()},
        {"identity.location", "", "Where the device is", {}, Line()},
        zarn::onvif::DescribeEnabled(),
        {DiscoveryAnywherePath, false, "Whether probes of networks are answered that the machine is not connected to"},
    };
}

utilities::name::Config ReadIdentity(configuration::node::Root const& root) {
    auto const text = [&](char const* path) { return Read<std::string>(root, path); };
    return utilities::name::Config({.manufacturer = text("identity.manufacturer"),
                                    .model = text("identity.model"),
                                    .firmware = text("identity.firmware"),
                                    .hardware = text("identity.hardware"),
                                    .location = text("identity.location"),
                                    .name = text("identity.name")});
}

bool ReadDiscoveryAnywhere(configuration::node::Root const& root) { return Read<bool>(root, DiscoveryAnywherePath); }

} // namespace zarn::host
