#pragma once

#include "media_common.h"

#include <soapMediaBindingService.h>

namespace zarn::service::onvif {

/// The ONVIF Media service (ver10/media/wsdl): one fixed profile per channel, and where its stream and snapshot are.
class MediaService final : public ChannelService<MediaBindingService> {
public:
    using ChannelService::ChannelService;

    /// The capabilities of this service, allocated in the context; null without memory.
    static trt__Capabilities* MakeServiceCapabilities(struct soap* soap);

    ZARN_MEDIA_OPERATIONS(ZARN_DECLARE)

private:
    template <class Response, class Member, class Maker>
    int Lookup(std::string const& token, Response& response, Member member, Maker maker);
};

} // namespace zarn::service::onvif
