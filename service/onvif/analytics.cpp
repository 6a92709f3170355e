#include "analytics.h"

#include <zarn/meta/data/sample_meta.h>
#include <zarn/onvif/meta/convert.h>

namespace zarn::service::onvif {

namespace {

/// Name and type of the one module, and the type of its metadata.
constexpr char ModuleName[] = "ZARN";

} // namespace

tan__Capabilities* AnalyticsService::MakeServiceCapabilities(struct soap* soap) {
    return Filled(soap_new_tan__Capabilities(soap), [](tan__Capabilities& capabilities) {
        capabilities.RuleSupport = &FalseValue;
        capabilities.AnalyticsModuleSupport = &TrueValue;
        capabilities.CellBasedSceneDescriptionSupported = &FalseValue;
        capabilities.RuleOptionsSupported = &FalseValue;
        capabilities.AnalyticsModuleOptionsSupported = &TrueValue; // although they are not served: clients look for it
        capabilities.SupportedMetadata = &TrueValue;
    });
}

int AnalyticsService::GetServiceCapabilities(_tan__GetServiceCapabilities*,
                                             _tan__GetServiceCapabilitiesResponse& response) {
    response.Capabilities = MakeServiceCapabilities(soap);
    return SOAP_OK;
}

int AnalyticsService::GetSupportedAnalyticsModules(Authenticated, _tan__GetSupportedAnalyticsModules*,
                                                   _tan__GetSupportedAnalyticsModulesResponse& response) {
    response.SupportedAnalyticsModules =
        Filled(soap_new_tt__SupportedAnalyticsModules(soap), [&](tt__SupportedAnalyticsModules& modules) {
            Append(modules.AnalyticsModuleDescription,
                   Filled(soap_new_tt__ConfigDescription(soap),
                          [](tt__ConfigDescription& description) { description.Name = ModuleName; }));
        });
    return SOAP_OK;
}

int AnalyticsService::GetAnalyticsModules(Authenticated, _tan__GetAnalyticsModules*,
                                          _tan__GetAnalyticsModulesResponse& response) {
    Append(response.AnalyticsModule, Filled(soap_new_tt__Config(soap), [](tt__Config& module) {
               module.Name = ModuleName;
               module.Type = ModuleName;
           }));
    return SOAP_OK;
}

int AnalyticsService::GetSupportedMetadata(Authenticated, _tan__GetSupportedMetadata*,
                                           _tan__GetSupportedMetadataResponse& response) {
    // Whatever type the request asks for: there is one module.
    auto const sample = meta::data::GetSampleMeta();
    Append(response.AnalyticsModule, Filled(soap_new_tan__MetadataInfo(soap), [&](tan__MetadataInfo& info) {
               info.Type = ModuleName;
               info.SampleFrame = zarn::onvif::meta::Convert(soap, sample);
           }));
    return SOAP_OK;
}

} // namespace zarn::service::onvif
