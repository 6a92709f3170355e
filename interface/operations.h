#pragma once

#include <array>
#include <string_view>

// The table of operations: what the five services offer and how each operation is answered. The bindings, service classes,
// tests and fuzzer are generated from it. A row is X(Access, prefix, Operation) or, when the message types have other names
// than _prefix__Operation and _prefix__OperationResponse, X(Access, prefix, Operation, Request, Response).
//
// Access     one of bindings::Access
// prefix     of the element's namespace
// Operation  the element's name. An underscore at its end marks the operation of a further port type; a request always
//            calls the first, since the element alone decides.
//
// A message that no definition in this folder declares has no members: gSOAP skips its content. A binding compares the
// element of a request with the rows in order; put frequent operations first.

// clang-format off

#define ZARN_DEVICE_OPERATIONS(X) \
    X(Open, tds, GetServiceCapabilities) \
    X(Login, tds, GetDeviceInformation) \
    X(Open, tds, GetServices) \
    X(Open, tds, GetCapabilities) \
    X(Open, tds, GetScopes) \
    X(Open, tds, GetSystemDateAndTime) \
    X(Open, tds, GetHostname) \
    X(Login, tds, GetNetworkInterfaces) \
    X(Open, tds, GetNetworkProtocols) \
    X(Login, tds, GetUsers) \
    X(Login, tds, SetUser) \
    X(Unserved, tds, AddIPAddressFilter) \
    X(Unserved, tds, AddScopes) \
    X(Unserved, tds, CreateCertificate) \
    X(Unserved, tds, CreateDot1XConfiguration) \
    X(Unserved, tds, CreateStorageConfiguration) \
    X(Unserved, tds, CreateUsers) \
    X(Unserved, tds, DeleteCertificates) \
    X(Unserved, tds, DeleteDot1XConfiguration) \
    X(Unserved, tds, DeleteGeoLocation) \
    X(Unserved, tds, DeleteStorageConfiguration) \
    X(Unserved, tds, DeleteUsers) \
    X(Unserved, tds, GetAccessPolicy) \
    X(Unserved, tds, GetCACertificates) \
    X(Unserved, tds, GetCertificateInformation) \
    X(Unserved, tds, GetCertificates) \
    X(Unserved, tds, GetCertificatesStatus) \
    X(Unserved, tds, GetClientCertificateMode) \
    X(Unserved, tds, GetDNS) \
    X(Unserved, tds, GetDPAddresses) \
    X(Unserved, tds, GetDiscoveryMode) \
    X(Unserved, tds, GetDot11Capabilities) \
    X(Unserved, tds, GetDot11Status) \
    X(Unserved, tds, GetDot1XConfiguration) \
    X(Unserved, tds, GetDot1XConfigurations) \
    X(Unserved, tds, GetDynamicDNS) \
    X(Unserved, tds, GetEndpointReference) \
    X(Unserved, tds, GetGeoLocation) \
    X(Unserved, tds, GetIPAddressFilter) \
    X(Unserved, tds, GetNTP) \
    X(Unserved, tds, GetNetworkDefaultGateway) \
    X(Unserved, tds, GetPkcs10Request) \
    X(Unserved, tds, GetRelayOutputs) \
    X(Unserved, tds, GetRemoteDiscoveryMode) \
    X(Unserved, tds, GetRemoteUser) \
    X(Unserved, tds, GetStorageConfiguration) \
    X(Unserved, tds, GetStorageConfigurations) \
    X(Unserved, tds, GetSystemBackup) \
    X(Unserved, tds, GetSystemLog) \
    X(Unserved, tds, GetSystemSupportInformation) \
    X(Unserved, tds, GetSystemUris) \
    X(Unserved, tds, GetWsdlUrl) \
    X(Unserved, tds, GetZeroConfiguration) \
    X(Unserved, tds, LoadCACertificates) \
    X(Unserved, tds, LoadCertificateWithPrivateKey) \
    X(Unserved, tds, LoadCertificates) \
    X(Unserved, tds, RemoveIPAddressFilter) \
    X(Unserved, tds, RemoveScopes) \
    X(Unserved, tds, RestoreSystem) \
    X(Unserved, tds, ScanAvailableDot11Networks) \
    X(Unserved, tds, SendAuxiliaryCommand) \
    X(Unserved, tds, SetAccessPolicy) \
    X(Unserved, tds, SetCertificatesStatus) \
    X(Unserved, tds, SetClientCertificateMode) \
    X(Unserved, tds, SetDNS) \
    X(Unserved, tds, SetDPAddresses) \
    X(Unserved, tds, SetDiscoveryMode) \
    X(Unserved, tds, SetDot1XConfiguration) \
    X(Unserved, tds, SetDynamicDNS) \
    X(Unserved, tds, SetGeoLocation) \
    X(Unserved, tds, SetHostname) \
    X(Unserved, tds, SetHostnameFromDHCP) \
    X(Unserved, tds, SetIPAddressFilter) \
    X(Unserved, tds, SetNTP) \
    X(Unserved, tds, SetNetworkDefaultGateway) \
    X(Unserved, tds, SetNetworkInterfaces) \
    X(Unserved, tds, SetNetworkProtocols) \
    X(Unserved, tds, SetRelayOutputSettings) \
    X(Unserved, tds, SetRelayOutputState) \
    X(Unserved, tds, SetRemoteDiscoveryMode) \
    X(Unserved, tds, SetRemoteUser) \
    X(Unserved, tds, SetScopes) \
    X(Unserved, tds, SetStorageConfiguration) \
    X(Unserved, tds, SetSystemDateAndTime) \
    X(Unserved, tds, SetSystemFactoryDefault) \
    X(Unserved, tds, SetZeroConfiguration) \
    X(Unserved, tds, StartFirmwareUpgrade) \
    X(Unserved, tds, StartSystemRestore) \
    X(Unserved, tds, SystemReboot) \
    X(Unserved, tds, UpgradeSystemFirmware)

#define ZARN_MEDIA_OPERATIONS(X) \
    X(Open, trt, GetServiceCapabilities) \
    X(Open, trt, GetProfiles) \
    X(Open, trt, GetVideoSourceConfigurations) \
    X(Open, trt, GetVideoEncoderConfigurations) \
    X(Open, trt, GetProfile) \
    X(Open, trt, GetVideoSourceConfiguration) \
    X(Open, trt, GetVideoEncoderConfiguration) \
    X(Login, trt, GetVideoSources) \
    X(Open, trt, GetVideoEncoderConfigurationOptions) \
    X(Login, trt, GetStreamUri) \
    X(Login, trt, GetSnapshotUri) \
    X(Accepted, trt, SetSynchronizationPoint) \
    X(Accepted, trt, GetVideoSourceConfigurationOptions) \
    X(Unserved, trt, AddAudioDecoderConfiguration) \
    X(Unserved, trt, AddAudioEncoderConfiguration) \
    X(Unserved, trt, AddAudioOutputConfiguration) \
    X(Unserved, trt, AddAudioSourceConfiguration) \
    X(Unserved, trt, AddMetadataConfiguration) \
    X(Unserved, trt, AddPTZConfiguration) \
    X(Unserved, trt, AddVideoAnalyticsConfiguration) \
    X(Unserved, trt, AddVideoEncoderConfiguration) \
    X(Unserved, trt, AddVideoSourceConfiguration) \
    X(Unserved, trt, CreateOSD) \
    X(Unserved, trt, CreateProfile) \
    X(Unserved, trt, DeleteOSD) \
    X(Unserved, trt, DeleteProfile) \
    X(Unserved, trt, GetAudioDecoderConfiguration) \
    X(Unserved, trt, GetAudioDecoderConfigurationOptions) \
    X(Unserved, trt, GetAudioDecoderConfigurations) \
    X(Unserved, trt, GetAudioEncoderConfiguration) \
    X(Unserved, trt, GetAudioEncoderConfigurationOptions) \
    X(Unserved, trt, GetAudioEncoderConfigurations) \
    X(Unserved, trt, GetAudioOutputConfiguration) \
    X(Unserved, trt, GetAudioOutputConfigurationOptions) \
    X(Unserved, trt, GetAudioOutputConfigurations) \
    X(Unserved, trt, GetAudioOutputs) \
    X(Unserved, trt, GetAudioSourceConfiguration) \
    X(Unserved, trt, GetAudioSourceConfigurationOptions) \
    X(Unserved, trt, GetAudioSourceConfigurations) \
    X(Unserved, trt, GetAudioSources) \
    X(Unserved, trt, GetCompatibleAudioDecoderConfigurations) \
    X(Unserved, trt, GetCompatibleAudioEncoderConfigurations) \
    X(Unserved, trt, GetCompatibleAudioOutputConfigurations) \
    X(Unserved, trt, GetCompatibleAudioSourceConfigurations) \
    X(Unserved, trt, GetCompatibleMetadataConfigurations) \
    X(Unserved, trt, GetCompatibleVideoAnalyticsConfigurations) \
    X(Unserved, trt, GetCompatibleVideoEncoderConfigurations) \
    X(Unserved, trt, GetCompatibleVideoSourceConfigurations) \
    X(Unserved, trt, GetGuaranteedNumberOfVideoEncoderInstances) \
    X(Unserved, trt, GetMetadataConfiguration) \
    X(Unserved, trt, GetMetadataConfigurationOptions) \
    X(Unserved, trt, GetMetadataConfigurations) \
    X(Unserved, trt, GetOSD) \
    X(Unserved, trt, GetOSDOptions) \
    X(Unserved, trt, GetOSDs) \
    X(Unserved, trt, GetVideoAnalyticsConfiguration) \
    X(Unserved, trt, GetVideoAnalyticsConfigurations) \
    X(Unserved, trt, GetVideoSourceModes) \
    X(Unserved, trt, RemoveAudioDecoderConfiguration) \
    X(Unserved, trt, RemoveAudioEncoderConfiguration) \
    X(Unserved, trt, RemoveAudioOutputConfiguration) \
    X(Unserved, trt, RemoveAudioSourceConfiguration) \
    X(Unserved, trt, RemoveMetadataConfiguration) \
    X(Unserved, trt, RemovePTZConfiguration) \
    X(Unserved, trt, RemoveVideoAnalyticsConfiguration) \
    X(Unserved, trt, RemoveVideoEncoderConfiguration) \
    X(Unserved, trt, RemoveVideoSourceConfiguration) \
    X(Unserved, trt, SetAudioDecoderConfiguration) \
    X(Unserved, trt, SetAudioEncoderConfiguration) \
    X(Unserved, trt, SetAudioOutputConfiguration) \
    X(Unserved, trt, SetAudioSourceConfiguration) \
    X(Unserved, trt, SetMetadataConfiguration) \
    X(Unserved, trt, SetOSD) \
    X(Unserved, trt, SetVideoAnalyticsConfiguration) \
    X(Unserved, trt, SetVideoEncoderConfiguration) \
    X(Unserved, trt, SetVideoSourceConfiguration) \
    X(Unserved, trt, SetVideoSourceMode) \
    X(Unserved, trt, StartMulticastStreaming) \
    X(Unserved, trt, StopMulticastStreaming)

#define ZARN_MEDIA2_OPERATIONS(X) \
    X(Open, tr2, GetServiceCapabilities) \
    X(Open, tr2, GetProfiles) \
    X(Open, tr2, GetVideoSourceConfigurations, tr2__GetConfiguration) \
    X(Open, tr2, GetVideoEncoderConfigurations, tr2__GetConfiguration) \
    X(Open, tr2, GetMetadataConfigurations, tr2__GetConfiguration) \
    X(Open, tr2, GetAnalyticsConfigurations, tr2__GetConfiguration) \
    X(Open, tr2, GetVideoEncoderConfigurationOptions, tr2__GetConfiguration) \
    X(Open, tr2, GetVideoSourceConfigurationOptions, tr2__GetConfiguration) \
    X(Open, tr2, GetMetadataConfigurationOptions, tr2__GetConfiguration) \
    X(Accepted, tr2, SetMetadataConfiguration, _tr2__SetMetadataConfiguration, tr2__SetConfigurationResponse) \
    X(Accepted, tr2, SetVideoEncoderConfiguration, _tr2__SetVideoEncoderConfiguration, tr2__SetConfigurationResponse) \
    X(Accepted, tr2, SetSynchronizationPoint) \
    X(Login, tr2, GetStreamUri) \
    X(Login, tr2, GetSnapshotUri) \
    X(Unserved, tr2, AddConfiguration) \
    X(Unserved, tr2, CreateMask) \
    X(Unserved, tr2, CreateOSD) \
    X(Unserved, tr2, CreateProfile) \
    X(Unserved, tr2, DeleteMask, _tr2__DeleteMask, tr2__SetConfigurationResponse) \
    X(Unserved, tr2, DeleteOSD, _tr2__DeleteOSD, tr2__SetConfigurationResponse) \
    X(Unserved, tr2, DeleteProfile) \
    X(Unserved, tr2, GetAudioDecoderConfigurationOptions, tr2__GetConfiguration) \
    X(Unserved, tr2, GetAudioDecoderConfigurations, tr2__GetConfiguration) \
    X(Unserved, tr2, GetAudioEncoderConfigurationOptions, tr2__GetConfiguration) \
    X(Unserved, tr2, GetAudioEncoderConfigurations, tr2__GetConfiguration) \
    X(Unserved, tr2, GetAudioOutputConfigurationOptions, tr2__GetConfiguration) \
    X(Unserved, tr2, GetAudioOutputConfigurations, tr2__GetConfiguration) \
    X(Unserved, tr2, GetAudioSourceConfigurationOptions, tr2__GetConfiguration) \
    X(Unserved, tr2, GetAudioSourceConfigurations, tr2__GetConfiguration) \
    X(Unserved, tr2, GetMaskOptions) \
    X(Unserved, tr2, GetMasks) \
    X(Unserved, tr2, GetOSDOptions) \
    X(Unserved, tr2, GetOSDs) \
    X(Unserved, tr2, GetVideoEncoderInstances) \
    X(Unserved, tr2, GetVideoSourceModes) \
    X(Unserved, tr2, RemoveConfiguration) \
    X(Unserved, tr2, SetAudioDecoderConfiguration, _tr2__SetAudioDecoderConfiguration, tr2__SetConfigurationResponse) \
    X(Unserved, tr2, SetAudioEncoderConfiguration, _tr2__SetAudioEncoderConfiguration, tr2__SetConfigurationResponse) \
    X(Unserved, tr2, SetAudioOutputConfiguration, _tr2__SetAudioOutputConfiguration, tr2__SetConfigurationResponse) \
    X(Unserved, tr2, SetAudioSourceConfiguration, _tr2__SetAudioSourceConfiguration, tr2__SetConfigurationResponse) \
    X(Unserved, tr2, SetMask, _tr2__SetMask, tr2__SetConfigurationResponse) \
    X(Unserved, tr2, SetOSD, _tr2__SetOSD, tr2__SetConfigurationResponse) \
    X(Unserved, tr2, SetVideoSourceConfiguration, _tr2__SetVideoSourceConfiguration, tr2__SetConfigurationResponse) \
    X(Unserved, tr2, SetVideoSourceMode) \
    X(Unserved, tr2, StartMulticastStreaming, tr2__StartStopMulticastStreaming, tr2__SetConfigurationResponse) \
    X(Unserved, tr2, StopMulticastStreaming, tr2__StartStopMulticastStreaming, tr2__SetConfigurationResponse)

#define ZARN_EVENTS_OPERATIONS(X) \
    X(Login, tev, PullMessages) \
    X(Accepted, tev, SetSynchronizationPoint) \
    X(Login, wsnt, Unsubscribe) \
    X(Open, tev, GetServiceCapabilities) \
    X(Login, tev, CreatePullPointSubscription) \
    X(Open, tev, GetEventProperties) \
    X(Login, wsnt, Renew) \
    X(Unserved, tev, Seek) \
    X(Unserved, wsnt, Unsubscribe_, _wsnt__Unsubscribe, _wsnt__UnsubscribeResponse) \
    X(Unserved, wsnt, Subscribe) \
    X(Unserved, wsnt, GetCurrentMessage) \
    X(OneWay, wsnt, Notify) \
    X(Unserved, wsnt, GetMessages) \
    X(Unserved, wsnt, DestroyPullPoint) \
    X(OneWay, wsnt, Notify_, _wsnt__Notify) \
    X(Unserved, wsnt, CreatePullPoint) \
    X(Unserved, wsnt, Renew_, _wsnt__Renew, _wsnt__RenewResponse) \
    X(Unserved, wsnt, Unsubscribe__, _wsnt__Unsubscribe, _wsnt__UnsubscribeResponse) \
    X(Unserved, wsnt, PauseSubscription) \
    X(Unserved, wsnt, ResumeSubscription)

#define ZARN_ANALYTICS_OPERATIONS(X) \
    X(Open, tan, GetServiceCapabilities) \
    X(Login, tan, GetSupportedAnalyticsModules) \
    X(Login, tan, GetAnalyticsModules) \
    X(Login, tan, GetSupportedMetadata) \
    X(Unserved, tan, CreateAnalyticsModules) \
    X(Unserved, tan, CreateRules) \
    X(Unserved, tan, DeleteAnalyticsModules) \
    X(Unserved, tan, DeleteRules) \
    X(Unserved, tan, GetAnalyticsModuleOptions) \
    X(Unserved, tan, GetRuleOptions) \
    X(Unserved, tan, GetRules) \
    X(Unserved, tan, GetSupportedRules) \
    X(Unserved, tan, ModifyAnalyticsModules) \
    X(Unserved, tan, ModifyRules)

// clang-format on

namespace zarn::bindings {

/// How an operation is answered.
enum class Access {
    Open,     ///< to everybody
    Accepted, ///< to everybody, with an empty response and without effect
    Login,    ///< with 401 unless the request carries the right credentials
    Unserved, ///< to everybody, with the fault "Not supported"
    OneWay,   ///< as Unserved; the operation has no response
};

struct Operation {
    Access access;
    std::string_view prefix;
    std::string_view name;

    /// Whether its element calls it, and not the operation of the same name in an earlier port type.
    constexpr bool HasElement() const { return !name.ends_with('_'); }

    constexpr bool IsServed() const { return access != Access::Unserved && access != Access::OneWay; }
};

#define ZARN_ROW(access, prefix, operation, ...) Operation{Access::access, #prefix, #operation},
/// Every row of the table.
inline constexpr std::array Operations{
    ZARN_DEVICE_OPERATIONS(ZARN_ROW) ZARN_MEDIA_OPERATIONS(ZARN_ROW) ZARN_MEDIA2_OPERATIONS(ZARN_ROW)
        ZARN_EVENTS_OPERATIONS(ZARN_ROW) ZARN_ANALYTICS_OPERATIONS(ZARN_ROW)};
#undef ZARN_ROW

template <class>
struct Messages;

template <class Binding, class RequestType, class ResponseType>
struct Messages<int (Binding::*)(RequestType*, ResponseType&)> {
    using Request = RequestType;
    using Response = ResponseType;
};

template <class Binding, class RequestType>
struct Messages<int (Binding::*)(RequestType*)> {
    using Request = RequestType;
};

/// The message types of an operation, given as its declaration in the binding: &DeviceBindingService::GetUsers.
template <auto Declaration>
using RequestOf = typename Messages<decltype(Declaration)>::Request;
template <auto Declaration>
using ResponseOf = typename Messages<decltype(Declaration)>::Response;

} // namespace zarn::bindings
