#pragma once

// Every operation of the five services that is not alone of its kind, as lists to generate from. Request and response
// are named after the operation unless said otherwise.

// clang-format off

#define DEVICE_OPERATIONS(X) \
    X(AddIPAddressFilter) X(AddScopes) X(CreateCertificate) X(CreateDot1XConfiguration) \
    X(CreateStorageConfiguration) X(CreateUsers) X(DeleteCertificates) X(DeleteDot1XConfiguration) \
    X(DeleteGeoLocation) X(DeleteStorageConfiguration) X(DeleteUsers) X(GetAccessPolicy) X(GetCACertificates) \
    X(GetCapabilities) X(GetCertificateInformation) X(GetCertificates) X(GetCertificatesStatus) \
    X(GetClientCertificateMode) X(GetDNS) X(GetDPAddresses) X(GetDeviceInformation) X(GetDiscoveryMode) \
    X(GetDot11Capabilities) X(GetDot11Status) X(GetDot1XConfiguration) X(GetDot1XConfigurations) \
    X(GetDynamicDNS) X(GetEndpointReference) X(GetGeoLocation) X(GetHostname) X(GetIPAddressFilter) X(GetNTP) \
    X(GetNetworkDefaultGateway) X(GetNetworkInterfaces) X(GetNetworkProtocols) X(GetPkcs10Request) \
    X(GetRelayOutputs) X(GetRemoteDiscoveryMode) X(GetRemoteUser) X(GetScopes) X(GetServiceCapabilities) \
    X(GetServices) X(GetStorageConfiguration) X(GetStorageConfigurations) X(GetSystemBackup) \
    X(GetSystemDateAndTime) X(GetSystemLog) X(GetSystemSupportInformation) X(GetSystemUris) X(GetUsers) \
    X(GetWsdlUrl) X(GetZeroConfiguration) X(LoadCACertificates) X(LoadCertificateWithPrivateKey) \
    X(LoadCertificates) X(RemoveIPAddressFilter) X(RemoveScopes) X(RestoreSystem) X(ScanAvailableDot11Networks) \
    X(SendAuxiliaryCommand) X(SetAccessPolicy) X(SetCertificatesStatus) X(SetClientCertificateMode) X(SetDNS) \
    X(SetDPAddresses) X(SetDiscoveryMode) X(SetDot1XConfiguration) X(SetDynamicDNS) X(SetGeoLocation) \
    X(SetHostname) X(SetHostnameFromDHCP) X(SetIPAddressFilter) X(SetNTP) X(SetNetworkDefaultGateway) \
    X(SetNetworkInterfaces) X(SetNetworkProtocols) X(SetRelayOutputSettings) X(SetRelayOutputState) \
    X(SetRemoteDiscoveryMode) X(SetRemoteUser) X(SetScopes) X(SetStorageConfiguration) X(SetSystemDateAndTime) \
    X(SetSystemFactoryDefault) X(SetUser) X(SetZeroConfiguration) X(StartFirmwareUpgrade) X(StartSystemRestore) \
    X(SystemReboot) X(UpgradeSystemFirmware)

#define MEDIA_OPERATIONS(X) \
    X(AddAudioDecoderConfiguration) X(AddAudioEncoderConfiguration) X(AddAudioOutputConfiguration) \
    X(AddAudioSourceConfiguration) X(AddMetadataConfiguration) X(AddPTZConfiguration) \
    X(AddVideoAnalyticsConfiguration) X(AddVideoEncoderConfiguration) X(AddVideoSourceConfiguration) \
    X(CreateOSD) X(CreateProfile) X(DeleteOSD) X(DeleteProfile) X(GetAudioDecoderConfiguration) \
    X(GetAudioDecoderConfigurationOptions) X(GetAudioDecoderConfigurations) X(GetAudioEncoderConfiguration) \
    X(GetAudioEncoderConfigurationOptions) X(GetAudioEncoderConfigurations) X(GetAudioOutputConfiguration) \
    X(GetAudioOutputConfigurationOptions) X(GetAudioOutputConfigurations) X(GetAudioOutputs) \
    X(GetAudioSourceConfiguration) X(GetAudioSourceConfigurationOptions) X(GetAudioSourceConfigurations) \
    X(GetAudioSources) X(GetCompatibleAudioDecoderConfigurations) X(GetCompatibleAudioEncoderConfigurations) \
    X(GetCompatibleAudioOutputConfigurations) X(GetCompatibleAudioSourceConfigurations) \
    X(GetCompatibleMetadataConfigurations) X(GetCompatibleVideoAnalyticsConfigurations) \
    X(GetCompatibleVideoEncoderConfigurations) X(GetCompatibleVideoSourceConfigurations) \
    X(GetGuaranteedNumberOfVideoEncoderInstances) X(GetMetadataConfiguration) X(GetMetadataConfigurationOptions) \
    X(GetMetadataConfigurations) X(GetOSD) X(GetOSDOptions) X(GetOSDs) X(GetProfile) X(GetProfiles) \
    X(GetServiceCapabilities) X(GetSnapshotUri) X(GetStreamUri) X(GetVideoAnalyticsConfiguration) \
    X(GetVideoAnalyticsConfigurations) X(GetVideoEncoderConfiguration) X(GetVideoEncoderConfigurationOptions) \
    X(GetVideoEncoderConfigurations) X(GetVideoSourceConfiguration) X(GetVideoSourceConfigurationOptions) \
    X(GetVideoSourceConfigurations) X(GetVideoSourceModes) X(GetVideoSources) X(RemoveAudioDecoderConfiguration) \
    X(RemoveAudioEncoderConfiguration) X(RemoveAudioOutputConfiguration) X(RemoveAudioSourceConfiguration) \
    X(RemoveMetadataConfiguration) X(RemovePTZConfiguration) X(RemoveVideoAnalyticsConfiguration) \
    X(RemoveVideoEncoderConfiguration) X(RemoveVideoSourceConfiguration) X(SetAudioDecoderConfiguration) \
    X(SetAudioEncoderConfiguration) X(SetAudioOutputConfiguration) X(SetAudioSourceConfiguration) \
    X(SetMetadataConfiguration) X(SetOSD) X(SetSynchronizationPoint) X(SetVideoAnalyticsConfiguration) \
    X(SetVideoEncoderConfiguration) X(SetVideoSourceConfiguration) X(SetVideoSourceMode) \
    X(StartMulticastStreaming) X(StopMulticastStreaming)

#define MEDIA2_OPERATIONS(X) \
    X(AddConfiguration) X(CreateMask) X(CreateOSD) X(CreateProfile) X(DeleteProfile) X(GetMaskOptions) \
    X(GetMasks) X(GetOSDOptions) X(GetOSDs) X(GetProfiles) X(GetServiceCapabilities) X(GetSnapshotUri) \
    X(GetStreamUri) X(GetVideoEncoderInstances) X(GetVideoSourceModes) X(RemoveConfiguration) \
    X(SetSynchronizationPoint) X(SetVideoSourceMode)

/// Request tr2__GetConfiguration.
#define MEDIA2_GET_OPERATIONS(X) \
    X(GetAnalyticsConfigurations) X(GetAudioDecoderConfigurationOptions) X(GetAudioDecoderConfigurations) \
    X(GetAudioEncoderConfigurationOptions) X(GetAudioEncoderConfigurations) \
    X(GetAudioOutputConfigurationOptions) X(GetAudioOutputConfigurations) X(GetAudioSourceConfigurationOptions) \
    X(GetAudioSourceConfigurations) X(GetMetadataConfigurationOptions) X(GetMetadataConfigurations) \
    X(GetVideoEncoderConfigurationOptions) X(GetVideoEncoderConfigurations) \
    X(GetVideoSourceConfigurationOptions) X(GetVideoSourceConfigurations)

/// Response tr2__SetConfigurationResponse.
#define MEDIA2_SET_OPERATIONS(X) \
    X(DeleteMask) X(DeleteOSD) X(SetAudioDecoderConfiguration) X(SetAudioEncoderConfiguration) \
    X(SetAudioOutputConfiguration) X(SetAudioSourceConfiguration) X(SetMask) X(SetMetadataConfiguration) \
    X(SetOSD) X(SetVideoEncoderConfiguration) X(SetVideoSourceConfiguration)

#define ANALYTICS_OPERATIONS(X) \
    X(CreateAnalyticsModules) X(CreateRules) X(DeleteAnalyticsModules) X(DeleteRules) \
    X(GetAnalyticsModuleOptions) X(GetAnalyticsModules) X(GetRuleOptions) X(GetRules) X(GetServiceCapabilities) \
    X(GetSupportedAnalyticsModules) X(GetSupportedMetadata) X(GetSupportedRules) X(ModifyAnalyticsModules) \
    X(ModifyRules)

#define EVENTS_OPERATIONS(X) \
    X(PullMessages) X(Seek) X(SetSynchronizationPoint) X(GetServiceCapabilities) X(CreatePullPointSubscription) \
    X(GetEventProperties)

/// Operations of WS-BaseNotification; Notify, which has no response, is not among them.
#define NOTIFICATION_OPERATIONS(X) \
    X(Unsubscribe) X(Renew) X(Subscribe) X(GetCurrentMessage) X(GetMessages) X(DestroyPullPoint) \
    X(CreatePullPoint) X(PauseSubscription) X(ResumeSubscription)

// clang-format on
