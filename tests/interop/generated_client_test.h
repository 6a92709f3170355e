#pragma once

#include "gsoap_client.h"
#include "support/host_process.h"

#include <gtest/gtest.h>
#include <soapDeviceBindingProxy.h>
#include <soapMedia2BindingProxy.h>
#include <soapMediaBindingProxy.h>
#include <soapRuleEngineBindingProxy.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace zarn::test {

/// A client generated from the service definitions, and the host that it logs in to.
class GeneratedClientTest : public testing::Test {
protected:
    explicit GeneratedClientTest(std::string configuration) : host({.configuration = std::move(configuration)}) {}

    /// Calls an operation at its service's address; throws when it fails.
    template <class Response, class Proxy, class Request>
    Response Ask(int (Proxy::*operation)(Request*, Response&), Request request = {}) {
        Response response;
        auto const* proxy = static_cast<Proxy*>(nullptr);
        int const status = client.Call(AddressOf(proxy), operation, std::move(request), response);
        if (status != SOAP_OK) throw std::runtime_error("gSOAP's status is " + std::to_string(status));
        return response;
    }

    std::string AddressOf(DeviceBindingProxy const*) const { return host.GetUrl() + "/onvif/device_service"; }

    std::string AddressOf(MediaBindingProxy const*) const { return host.GetUrl() + "/onvif/media_service"; }

    std::string AddressOf(Media2BindingProxy const*) const { return host.GetUrl() + "/onvif/media2_service"; }

    std::string AddressOf(RuleEngineBindingProxy const*) const { return host.GetUrl() + "/onvif/analytics_service"; }

    /// The base URL that the host advertises for a port.
    std::string Advertised(std::string const& scheme, unsigned port) {
        auto const address = Ask(&DeviceBindingProxy::GetCapabilities).Capabilities->Device->XAddr;
        auto const begin = address.find("://") + 3;
        return scheme + "://" + address.substr(begin, address.find(':', begin) - begin) + ":" + std::to_string(port);
    }

    HostProcess host;
    GsoapClient client{host.GetPassword()};
};

} // namespace zarn::test
