#pragma once

#include <memory>

namespace zarn::meta::data {
class Event;
}

namespace zarn::service::onvif {

/// An event of the host, which all subscriptions share.
using EventPtr = std::shared_ptr<meta::data::Event>;

} // namespace zarn::service::onvif
