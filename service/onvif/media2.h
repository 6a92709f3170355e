#pragma once

#include "media_common.h"

#include <soapMedia2BindingService.h>

namespace zarn::service::onvif {

/// The ONVIF Media2 service (ver20/media/wsdl): one fixed profile per channel, whose configurations are returned on
/// request.
class Media2Service final : public ChannelService<Media2BindingService> {
public:
    using ChannelService::ChannelService;

    /// The capabilities of this service, allocated in the context; null without memory.
    static tr2__Capabilities2* MakeServiceCapabilities(struct soap* soap);

    ZARN_MEDIA2_OPERATIONS(ZARN_DECLARE)
};

} // namespace zarn::service::onvif
