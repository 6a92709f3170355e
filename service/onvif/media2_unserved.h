#pragma once

#include "unserved.h"

/// The operations of the service that this device does not serve, in alphabetical order.
#define ZARN_UNSERVED_MEDIA2                                                                                           \
    ZARN_UNSERVED(tr2, AddConfiguration)                                                                               \
    ZARN_UNSERVED(tr2, CreateMask)                                                                                     \
    ZARN_UNSERVED(tr2, CreateOSD)                                                                                      \
    ZARN_UNSERVED(tr2, CreateProfile)                                                                                  \
    ZARN_UNSERVED_AS(DeleteMask, _tr2__DeleteMask, tr2__SetConfigurationResponse)                                      \
    ZARN_UNSERVED_AS(DeleteOSD, _tr2__DeleteOSD, tr2__SetConfigurationResponse)                                        \
    ZARN_UNSERVED(tr2, DeleteProfile)                                                                                  \
    ZARN_UNSERVED_AS(GetAudioDecoderConfigurationOptions, tr2__GetConfiguration,                                       \
                     _tr2__GetAudioDecoderConfigurationOptionsResponse)                                                \
    ZARN_UNSERVED_AS(GetAudioDecoderConfigurations, tr2__GetConfiguration,                                             \
                     _tr2__GetAudioDecoderConfigurationsResponse)                                                      \
    ZARN_UNSERVED_AS(GetAudioEncoderConfigurationOptions, tr2__GetConfiguration,                                       \
                     _tr2__GetAudioEncoderConfigurationOptionsResponse)                                                \
    ZARN_UNSERVED_AS(GetAudioEncoderConfigurations, tr2__GetConfiguration,                                             \
                     _tr2__GetAudioEncoderConfigurationsResponse)                                                      \
    ZARN_UNSERVED_AS(GetAudioOutputConfigurationOptions, tr2__GetConfiguration,                                        \
                     _tr2__GetAudioOutputConfigurationOptionsResponse)                                                 \
    ZARN_UNSERVED_AS(GetAudioOutputConfigurations, tr2__GetConfiguration, _tr2__GetAudioOutputConfigurationsResponse)  \
    ZARN_UNSERVED_AS(GetAudioSourceConfigurationOptions, tr2__GetConfiguration,                                        \
                     _tr2__GetAudioSourceConfigurationOptionsResponse)                                                 \
    ZARN_UNSERVED_AS(GetAudioSourceConfigurations, tr2__GetConfiguration, _tr2__GetAudioSourceConfigurationsResponse)  \
    ZARN_UNSERVED(tr2, GetMaskOptions)                                                                                 \
    ZARN_UNSERVED(tr2, GetMasks)                                                                                       \
    ZARN_UNSERVED(tr2, GetOSDOptions)                                                                                  \
    ZARN_UNSERVED(tr2, GetOSDs)                                                                                        \
    ZARN_UNSERVED(tr2, GetVideoEncoderInstances)                                                                       \
    ZARN_UNSERVED(tr2, GetVideoSourceModes)                                                                            \
    ZARN_UNSERVED(tr2, RemoveConfiguration)                                                                            \
    ZARN_UNSERVED_AS(SetAudioDecoderConfiguration, _tr2__SetAudioDecoderConfiguration, tr2__SetConfigurationResponse)  \
    ZARN_UNSERVED_AS(SetAudioEncoderConfiguration, _tr2__SetAudioEncoderConfiguration, tr2__SetConfigurationResponse)  \
    ZARN_UNSERVED_AS(SetAudioOutputConfiguration, _tr2__SetAudioOutputConfiguration, tr2__SetConfigurationResponse)    \
    ZARN_UNSERVED_AS(SetAudioSourceConfiguration, _tr2__SetAudioSourceConfiguration, tr2__SetConfigurationResponse)    \
    ZARN_UNSERVED_AS(SetMask, _tr2__SetMask, tr2__SetConfigurationResponse)                                            \
    ZARN_UNSERVED_AS(SetOSD, _tr2__SetOSD, tr2__SetConfigurationResponse)                                              \
    ZARN_UNSERVED_AS(SetVideoSourceConfiguration, _tr2__SetVideoSourceConfiguration, tr2__SetConfigurationResponse)    \
    ZARN_UNSERVED(tr2, SetVideoSourceMode)                                                                             \
    ZARN_UNSERVED_AS(StartMulticastStreaming, tr2__StartStopMulticastStreaming, tr2__SetConfigurationResponse)         \
    ZARN_UNSERVED_AS(StopMulticastStreaming, tr2__StartStopMulticastStreaming, tr2__SetConfigurationResponse)
