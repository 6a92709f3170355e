#include "device.h"

#include "analytics.h"
#include "events.h"
#include "media.h"
#include "media2.h"

#include <zarn/network/local.h>
#include <zarn/onvif/discovery/scopes.h>

#include <array>
#include <utility>

namespace zarn::service::onvif {

namespace {

/// One service of the device as GetServices reports it.
struct ServiceRow {
    char const* nameSpace;
    char const* path;
    char const* capabilitiesElement;
    void (*attachCapabilities)(soap*, soap_dom_element& element);
};

/// Hangs the service's capabilities into the element as its typed content.
template <class Service, int Type>
void AttachCapabilities(soap* soap, soap_dom_element& element) {
    if (auto* capabilities = Service::MakeServiceCapabilities(soap)) soap_elt_node(&element, capabilities, Type);
}

constexpr std::array Services{
    ServiceRow{"http://www.onvif.org/ver10/events/wsdl", EventsServicePath, "tev:Capabilities",
               AttachCapabilities<EventsService, SOAP_TYPE_tev__Capabilities>},
    ServiceRow{"http://www.onvif.org/ver10/device/wsdl", DeviceServicePath, "tds:Capabilities",
               AttachCapabilities<DeviceService, SOAP_TYPE_tds__DeviceServiceCapabilities>},
    ServiceRow{"http://www.onvif.org/ver10/media/wsdl", MediaServicePath, "trt:Capabilities",
               AttachCapabilities<MediaService, SOAP_TYPE_trt__Capabilities>},
    ServiceRow{"http://www.onvif.org/ver20/media/wsdl", Media2ServicePath, "tr2:Capabilities",
               AttachCapabilities<Media2Service, SOAP_TYPE_tr2__Capabilities2>},
    ServiceRow{"http://www.onvif.org/ver20/analytics/wsdl", AnalyticsServicePath, "tan:Capabilities",
               AttachCapabilities<AnalyticsService, SOAP_TYPE_tan__Capabilities>},
};

tt__OnvifVersion* MakeVersion(soap* soap, int major, int minor) {
    return Filled(soap_new_tt__OnvifVersion(soap), [&](tt__OnvifVersion& version) {
        version.Major = major;
        version.Minor = minor;
    });
}

_tds__Service_Capabilities* MakeServiceCapabilitiesElement(soap* soap, ServiceRow const& row) {
    return Filled(soap_new__tds__Service_Capabilities(soap), [&](_tds__Service_Capabilities& capabilities) {
        capabilities.__any.soap = soap; // which owns the name
        soap_elt_set(&capabilities.__any, nullptr, row.capabilitiesElement);
        row.attachCapabilities(soap, capabilities.__any);
    });
}

tt__SystemCapabilities* MakeSystemCapabilities(soap* soap) {
    return Filled(soap_new_tt__SystemCapabilities(soap), [&](tt__SystemCapabilities& system) {
        system.DiscoveryResolve = false;
        system.DiscoveryBye = false;
        system.RemoteDiscovery = false;
        system.SystemBackup = false;
        system.SystemLogging = false;
        system.FirmwareUpgrade = false;
        Append(system.SupportedVersions, MakeVersion(soap, 23, 12));
    });
}

tt__DeviceCapabilities* MakeDeviceCapabilities(soap* soap, std::string const& baseUri) {
    return Filled(soap_new_tt__DeviceCapabilities(soap), [&](tt__DeviceCapabilities& device) {
        device.XAddr = baseUri + DeviceServicePath;
        device.System = MakeSystemCapabilities(soap);
    });
}

tt__EventCapabilities* MakeEventCapabilities(soap* soap, std::string const& baseUri) {
    return Filled(soap_new_tt__EventCapabilities(soap), [&](tt__EventCapabilities& events) {
        events.XAddr = baseUri + EventsServicePath;
        events.WSSubscriptionPolicySupport = false;
        events.WSPullPointSupport = true;
        events.WSPausableSubscriptionManagerInterfaceSupport = false;
    });
}

tt__MediaCapabilities* MakeMediaCapabilities(soap* soap, std::string const& baseUri) {
    return Filled(soap_new_tt__MediaCapabilities(soap), [&](tt__MediaCapabilities& media) {
        media.XAddr = baseUri + MediaServicePath;
        media.StreamingCapabilities =
            Filled(soap_new_tt__RealTimeStreamingCapabilities(soap), [](tt__RealTimeStreamingCapabilities& streaming) {
                streaming.RTP_USCORERTSP_USCORETCP = &TrueValue;
            });
    });
}

tds__SecurityCapabilities* MakeSecurityCapabilities(soap* soap) {
    return Filled(soap_new_tds__SecurityCapabilities(soap), [](tds__SecurityCapabilities& security) {
        security.TLS1_x002e0 = &FalseValue;
        security.TLS1_x002e1 = &FalseValue;
        security.TLS1_x002e2 = &FalseValue;
        security.OnboardKeyGeneration = &FalseValue;
        security.AccessPolicyConfig = &FalseValue;
        security.DefaultAccessPolicy = &FalseValue;
        security.Dot1X = &FalseValue;
        security.RemoteUserHandling = &FalseValue;
        security.X_x002e509Token = &FalseValue;
        security.SAMLToken = &FalseValue;
        security.KerberosToken = &FalseValue;
        security.UsernameToken = &FalseValue;
        security.HttpDigest = &TrueValue;
    });
}

} // namespace

DeviceService::DeviceService(struct soap* soap, URIBase uriBase, ZarnAuthenticationEngine const* engine,
                             utilities::name::Config const& nameConfig,
                             std::shared_ptr<configuration::node::Root> configuration)
    : Service(soap, engine), URIBase(uriBase), nameConfig(nameConfig), configuration(std::move(configuration)) {}

tds__DeviceServiceCapabilities* DeviceService::MakeServiceCapabilities(struct soap* soap) {
    // The schema requires Network and System; this device has nothing to say in either and leaves them out.
    return Filled(soap_new_tds__DeviceServiceCapabilities(soap),
                  [&](auto& capabilities) { capabilities.Security = MakeSecurityCapabilities(soap); });
}

int DeviceService::GetServiceCapabilities(_tds__GetServiceCapabilities*,
                                          _tds__GetServiceCapabilitiesResponse& response) {
    response.Capabilities = MakeServiceCapabilities(soap);
    return SOAP_OK;
}

int DeviceService::GetServices(_tds__GetServices* request, _tds__GetServicesResponse& response) {
    auto const baseUri = GetBaseUri();
    for (auto const& row : Services) {
        Append(response.Service, Filled(soap_new_tds__Service(soap), [&](tds__Service& service) {
                   service.Namespace = row.nameSpace;
                   service.XAddr = baseUri + row.path;
                   // One number for every service, on purpose; GetCapabilities reports another one.
                   service.Version = MakeVersion(soap, 1, 2);
                   if (OrEmpty(request).IncludeCapability)
                       service.Capabilities = MakeServiceCapabilitiesElement(soap, row);
               }));
    }
    return SOAP_OK;
}

int DeviceService::GetCapabilities(_tds__GetCapabilities*, _tds__GetCapabilitiesResponse& response) {
    auto const baseUri = GetBaseUri();
    response.Capabilities = Filled(soap_new_tt__Capabilities(soap), [&](tt__Capabilities& capabilities) {
        capabilities.Device = MakeDeviceCapabilities(soap, baseUri);
        capabilities.Events = MakeEventCapabilities(soap, baseUri);
        capabilities.Media = MakeMediaCapabilities(soap, baseUri);
    });
    return SOAP_OK;
}

int DeviceService::GetScopes(_tds__GetScopes*, _tds__GetScopesResponse& response) {
    for (auto const& item : zarn::onvif::discovery::ListScopes(nameConfig)) {
        Append(response.Scopes, Filled(soap_new_tt__Scope(soap), [&](tt__Scope& scope) {
                   scope.ScopeDef = tt__ScopeDefinition__Fixed;
                   scope.ScopeItem = item;
               }));
    }
    return SOAP_OK;
}

int DeviceService::GetDeviceInformation(Authenticated, _tds__GetDeviceInformation*,
                                        _tds__GetDeviceInformationResponse& response) {
    response.Manufacturer = nameConfig.GetProductManufacturer();
    response.Model = nameConfig.GetProductModel();
    response.FirmwareVersion = nameConfig.GetProductFirmware();
    response.SerialNumber = network::GetHostname(); // the host's name is what tells one installation from another
    response.HardwareId = nameConfig.GetProductHardware();
    return SOAP_OK;
}

} // namespace zarn::service::onvif
