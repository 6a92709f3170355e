#include "configuration_values.h"

#include <zarn/configuration/node/primitive.h>
#include <zarn/object/primitive.h>

namespace zarn::service::onvif {

namespace {

template <class T>
T ReadValue(configuration::node::Map const& map, boost::string_view path) {
    using Value = configuration::node::Primitive<T>;
    auto const node = map.Find(path);
    if (!node) throw map.BadCastError(Value::TypeName);
    return node->template As<Value>().GetValuePtr()->template As<object::Primitive<T>>().Get();
}

} // namespace

unsigned short ReadPort(configuration::node::Root const& root, boost::string_view path) {
    return ReadValue<unsigned short>(root, path);
}

std::string ReadName(configuration::node::Map const& entry) { return ReadValue<std::string>(entry, "name"); }

} // namespace zarn::service::onvif
