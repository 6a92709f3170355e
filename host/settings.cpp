#include "host/settings.h"

#include "host/access/access_settings.h"
#include "host/device_settings.h"
#include "host/events/mqtt_settings.h"
#include "host/events/queue_watch.h"
#include "host/video/channel_settings.h"
#include "host/video/rtsp_settings.h"
#include "host/web/tls.h"
#include "host/web/web_settings.h"

#include <zarn/configuration/error.h>
#include <zarn/configuration/node/value.h>
#include <zarn/configuration/schema.h>
#include <zarn/logging/format.h>

#include <cstddef>

namespace zarn::host {

void DescribeSettings(configuration::node::Root& root) {
    for (auto const& makeSchemas :
         {MakeDeviceSchemas, web::MakeWebSchemas, video::MakeRtspSchemas, MakeAccessSchemas, web::MakeTlsSchemas,
          events::MakeQueueSchemas, events::MakeMqttSchemas, video::MakeChannelSchemas}) {
        root.Schema(makeSchemas());
    }
}

void OverrideSetting(configuration::node::Root const& root, std::string const& path, std::string const& text) {
    constexpr std::size_t QuotedLength = 256;
    auto const node = root.Find(path);
    if (!node) throw configuration::Error(logging::ToLine(path, QuotedLength), "there is no such setting");
    if (!node->Is<configuration::node::Value>())
        throw configuration::Error(path, "this is a group of settings, no value");
    node->As<configuration::node::Value>().OverrideFromString(text);
}

} // namespace zarn::host
