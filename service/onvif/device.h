#pragma once

#include "device_unserved.h"
#include "uri_base.h"

#include <zarn/configuration/node/root.h>
#include <zarn/network/device.h>
#include <zarn/utilities/name/config.h>

#include <soapDeviceBindingService.h>

#include <chrono>
#include <memory>
#include <vector>

class ZarnAuthenticationEngine;

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
/// Reports the host as it is and changes nothing. Lives for one request, on that request's context and thread.
class DeviceService final : public DeviceBindingService, private URIBase {
public:
    DeviceService(struct soap* soap, URIBase uriBase, ZarnAuthenticationEngine const* engine,
                  utilities::name::Config const& nameConfig, std::shared_ptr<configuration::node::Root> configuration);

    /// The capabilities of this service, allocated in the context anew; null without memory.
    static tds__DeviceServiceCapabilities* MakeServiceCapabilities(struct soap* soap);

    /// Always null: services are made afresh for every request, never cloned.
    DeviceBindingService* copy() override;

    // The operations; what they have in common stands at URIBase.

    int GetServices(_tds__GetServices* request, _tds__GetServicesResponse& response) override;
    int GetServiceCapabilities(_tds__GetServiceCapabilities* request,
                               _tds__GetServiceCapabilitiesResponse& response) override;
    int GetDeviceInformation(_tds__GetDeviceInformation* request,
                             _tds__GetDeviceInformationResponse& response) override;
    int GetCapabilities(_tds__GetCapabilities* request, _tds__GetCapabilitiesResponse& response) override;
    int GetScopes(_tds__GetScopes* request, _tds__GetScopesResponse& response) override;
    int GetSystemDateAndTime(_tds__GetSystemDateAndTime* request,
                             _tds__GetSystemDateAndTimeResponse& response) override;
    int GetHostname(_tds__GetHostname* request, _tds__GetHostnameResponse& response) override;
    int GetNetworkInterfaces(_tds__GetNetworkInterfaces* request,
                             _tds__GetNetworkInterfacesResponse& response) override;
    int GetNetworkProtocols(_tds__GetNetworkProtocols* request, _tds__GetNetworkProtocolsResponse& response) override;
    int GetUsers(_tds__GetUsers* request, _tds__GetUsersResponse& response) override;
    int SetUser(_tds__SetUser* request, _tds__SetUserResponse& response) override;

    ZARN_UNSERVED_DEVICE

private:
    ZarnAuthenticationEngine const* authenticationEngine;
    utilities::name::Config nameConfig;
    std::shared_ptr<configuration::node::Root> configuration;
};

} // namespace zarn::service::onvif
