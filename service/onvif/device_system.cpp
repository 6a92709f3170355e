#include "configuration_values.h"
#include "device.h"

#include <zarn/network/local.h>

#include <chrono>

namespace zarn::service::onvif {

namespace {

tt__DateTime* MakeDateTime(soap* soap, std::chrono::sys_seconds time) {
    return Filled(soap_new_tt__DateTime(soap), [&](tt__DateTime& dateTime) {
        auto const midnight = std::chrono::floor<std::chrono::days>(time);
        std::chrono::year_month_day const date(midnight);
        std::chrono::hh_mm_ss const timeOfDay(time - midnight);
        dateTime.Date = Filled(soap_new_tt__Date(soap), [&](tt__Date& out) {
            out.Year = static_cast<int>(date.year());
            out.Month = static_cast<int>(static_cast<unsigned>(date.month()));
            out.Day = static_cast<int>(static_cast<unsigned>(date.day()));
        });
        dateTime.Time = Filled(soap_new_tt__Time(soap), [&](tt__Time& out) {
            out.Hour = static_cast<int>(timeOfDay.hours().count());
            out.Minute = static_cast<int>(timeOfDay.minutes().count());
            out.Second = static_cast<int>(timeOfDay.seconds().count());
        });
    });
}

/// Every interface is reported as configured by DHCP with prefix length 0, whatever the host's real configuration.
tt__IPv4NetworkInterface* MakeIPv4(soap* soap, std::string const& address) {
    return Filled(soap_new_tt__IPv4NetworkInterface(soap), [&](tt__IPv4NetworkInterface& ipv4) {
        ipv4.Enabled = true;
        ipv4.Config = Filled(soap_new_tt__IPv4Configuration(soap), [&](tt__IPv4Configuration& config) {
            config.DHCP = true;
            config.FromDHCP = Filled(soap_new_tt__PrefixedIPv4Address(soap), [&](tt__PrefixedIPv4Address& prefixed) {
                prefixed.Address = address;
                prefixed.PrefixLength = 0;
            });
        });
    });
}

tt__NetworkProtocol* MakeProtocol(soap* soap, tt__NetworkProtocolType name, unsigned short port) {
    return Filled(soap_new_tt__NetworkProtocol(soap), [&](tt__NetworkProtocol& protocol) {
        protocol.Name = name;
        protocol.Enabled = true;
        protocol.Port.push_back(port);
    });
}

} // namespace

tt__SystemDateTime* MakeSystemDateTime(soap* soap, std::chrono::sys_seconds now) {
    return Filled(soap_new_tt__SystemDateTime(soap), [&](tt__SystemDateTime& dateTime) {
        dateTime.DateTimeType = tt__SetDateTimeType__NTP;
        dateTime.DaylightSavings = false; // UTC knows none
        dateTime.UTCDateTime = MakeDateTime(soap, now);
    });
}

std::vector<tt__NetworkInterface*> MakeNetworkInterfaces(soap* soap,
                                                         std::vector<std::shared_ptr<network::Device>> const& devices) {
    std::vector<tt__NetworkInterface*> interfaces;
    for (auto const& device : devices) {
        auto const address = device->GetIPv4Address();
        if (address.is_unspecified()) continue;
        Append(interfaces, Filled(soap_new_tt__NetworkInterface(soap), [&](tt__NetworkInterface& interface) {
                   interface.token = device->GetName();
                   interface.Enabled = true;
                   interface.Info =
                       Filled(soap_new_tt__NetworkInterfaceInfo(soap),
                              [&](tt__NetworkInterfaceInfo& info) { info.HwAddress = device->GetHardwareAddress(); });
                   interface.IPv4 = MakeIPv4(soap, address.to_string());
               }));
    }
    return interfaces;
}

int DeviceService::GetSystemDateAndTime(_tds__GetSystemDateAndTime*, _tds__GetSystemDateAndTimeResponse& response) {
    auto const now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    response.SystemDateAndTime = MakeSystemDateTime(soap, now);
    return SOAP_OK;
}

int DeviceService::GetHostname(_tds__GetHostname*, _tds__GetHostnameResponse& response) {
    response.HostnameInformation =
        Filled(soap_new_tt__HostnameInformation(soap), [&](tt__HostnameInformation& information) {
            information.FromDHCP = false;
            information.Name = soap_new_std__string(soap);
            if (information.Name) *information.Name = network::GetHostname();
        });
    return SOAP_OK;
}

int DeviceService::GetNetworkInterfaces(Authenticated, _tds__GetNetworkInterfaces*,
                                        _tds__GetNetworkInterfacesResponse& response) {
    response.NetworkInterfaces = MakeNetworkInterfaces(soap, network::GetDevices());
    return SOAP_OK;
}

int DeviceService::GetNetworkProtocols(_tds__GetNetworkProtocols*, _tds__GetNetworkProtocolsResponse& response) {
    auto& protocols = response.NetworkProtocols;
    // HTTP also when the web server speaks TLS.
    Append(protocols, MakeProtocol(soap, tt__NetworkProtocolType__HTTP, GetPort()));
    Append(protocols, MakeProtocol(soap, tt__NetworkProtocolType__RTSP, ReadPort(*configuration, RtspPortPath)));
    return SOAP_OK;
}

int DeviceService::GetUsers(Authenticated, _tds__GetUsers*, _tds__GetUsersResponse& response) {
    Append(response.User, Filled(soap_new_tt__User(soap), [](tt__User& user) {
               user.Username = "admin";
               user.UserLevel = tt__UserLevel__Administrator;
           }));
    return SOAP_OK;
}

int DeviceService::SetUser(Authenticated, _tds__SetUser*, _tds__SetUserResponse&) {
    return SoapFault(soap, FaultCode::Sender, "Cannot modify this user", "ter:InvalidArgVal", "ter:FixedUser");
}

} // namespace zarn::service::onvif
