#include "configuration_values.h"

#include <zarn/configuration/event.h>
#include <zarn/configuration/node/primitive.h>

namespace zarn::service::onvif {

std::optional<bool> ReadEnabled(configuration::Event const& event) {
    if (!event.Is<configuration::event::Changed>()) return std::nullopt;
    return event.GetNode()->As<configuration::node::Primitive<bool>>().Get();
}

unsigned short ReadPort(configuration::node::Root const& root, boost::string_view path) {
    return configuration::node::Read<unsigned short>(root, {path.data(), path.size()});
}

std::string ReadName(configuration::node::Map const& entry) {
    auto const node = entry.Find("name");
    bool const isChannel = entry.GetPath() == "channels." + entry.GetKey();
    // One channel without a name must not make the lists of all channels fail.
    if (isChannel && !node) return entry.GetKey();
    auto const name = configuration::node::Read<std::string>(entry, "name");
    return isChannel && name.empty() && !node->IsStated() ? entry.GetKey() : name;
}

} // namespace zarn::service::onvif
