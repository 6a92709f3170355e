#pragma once

#include "service.h"
#include "uri_base.h"

#include <zarn/configuration/node/root.h>
#include <zarn/network/device.h>
#include <zarn/utilities/name/config.h>

#include <soapDeviceBindingService.h>

#include <chrono>
#include <memory>
#include <vector>

namespace zarn::service::onvif {

/// Paths of the five services below the base URI; a service's address (XAddr) is the base URI followed by its path.
inline constexpr char DeviceServicePath[] = "/device_service";
inline constexpr char MediaServicePath[] = "/media_service";
inline constexpr char Media2ServicePath[] = "/media2_service";
inline constexpr char EventsServicePath[] = "/events_service";
inline constexpr char AnalyticsServicePath[] = "/analytics_service";

/// The device clock as GetSystemDateAndTime reports it: UTC, no zone, no local time. Null without memory.
/// now  seconds since the epoch, UTC
tt__SystemDateTime* MakeSystemDateTime(soap* soap, std::chrono::sys_seconds now);

/// The devices that have an IPv4 address as GetNetworkInterfaces reports them, in their order. One for which there is
/// no memory is left out.
std::vector<tt__NetworkInterface*> MakeNetworkInterfaces(soap* soap,
                                                         std::vector<std::shared_ptr<network::Device>> const& devices);

/// The ONVIF Device service (ver10/device/wsdl): what the device is, where its services are, clock, network, users.
/// Reports the host as it is and changes nothing.
class DeviceService final : public Service<DeviceBindingService>, private URIBase {
public:
    DeviceService(struct soap* soap, URIBase uriBase, ZarnAuthenticationEngine const* engine,
                  utilities::name::Config const& nameConfig, std::shared_ptr<configuration::node::Root> configuration);

    /// The capabilities of this service, allocated in the context; null without memory.
    static tds__DeviceServiceCapabilities* MakeServiceCapabilities(struct soap* soap);

    ZARN_DEVICE_OPERATIONS(ZARN_DECLARE)

private:
    utilities::name::Config nameConfig;
    std::shared_ptr<configuration::node::Root> configuration;
};

} // namespace zarn::service::onvif
