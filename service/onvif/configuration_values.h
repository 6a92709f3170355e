#pragma once

#include <zarn/configuration/event.h>
#include <zarn/configuration/node/root.h>
#include <zarn/onvif/settings.h>

#include <boost/utility/string_view.hpp>

#include <memory>
#include <optional>
#include <string>

namespace zarn::service::onvif {

using zarn::onvif::EnabledPath;
using zarn::onvif::RtspPortPath;
using zarn::onvif::WebPortPath;

/// What an event of the setting says that it is now; nothing for an event that is no change.
/// Throws object::BadCast with "zarn.configuration.node.Bool" when the event's node is no boolean.
/// Thread: any; takes no configuration lock.
std::optional<bool> ReadEnabled(configuration::Event const& event);

/// The port that the configuration holds at the path.
/// Throws object::BadCast when there is no such node or its value is not an unsigned 16-bit number.
/// Thread: any; takes no configuration lock.
unsigned short ReadPort(configuration::node::Root const& root, boost::string_view path);

/// The `name` of a channel entry, or of any other map; the id of a channel whose name was never set.
/// Throws object::BadCast with "zarn.configuration.node.String" when it is missing elsewhere, or not a string.
std::string ReadName(configuration::node::Map const& entry);

} // namespace zarn::service::onvif
