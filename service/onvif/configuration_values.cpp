#include "configuration_values.h"

#include <zarn/configuration/event/changed.h>
#include <zarn/configuration/node/primitive.h>
#include <zarn/object/primitive.h>

namespace zarn::service::onvif {

namespace {

/// Where the node would be.
std::string JoinPath(configuration::node::Map const& map, boost::string_view path) {
    auto const prefix = map.GetPath();
    return (prefix.empty() ? prefix : prefix + ".") + std::string(path.data(), path.size());
}

template <class T>
T ReadValue(configuration::node::Map const& map, boost::string_view path) {
    using Value = configuration::node::Primitive<T>;
    auto const node = map.Find(path);
    if (!node) throw object::BadCast(Value::TypeName, JoinPath(map, path));
    return node->template As<Value>().GetValuePtr()->template As<object::Primitive<T>>().Get();
}

} // namespace

std::optional<bool> ReadEnabled(configuration::Event const& event) {
    if (!event.Is<configuration::event::Changed>()) return std::nullopt;
    return event.GetNode()->As<configuration::node::Primitive<bool>>().Get();
}

unsigned short ReadPort(configuration::node::Root const& root, boost::string_view path) {
    return ReadValue<unsigned short>(root, path);
}

std::string ReadName(configuration::node::Map const& entry) {
    auto const node = entry.Find("name");
    bool const isChannel = entry.GetPath() == "channels." + entry.GetKey();
    // One channel that lacks a name must not take the lists of all of them down.
    if (isChannel && !node) return entry.GetKey();
    auto const name = ReadValue<std::string>(entry, "name");
    return isChannel && name.empty() && !node->IsStated() ? entry.GetKey() : name;
}

} // namespace zarn::service::onvif
