#pragma once

#include <zarn/configuration/node/map.h>
#include <zarn/configuration/node/value.h>
#include <zarn/object/primitive.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace zarn::configuration::node {

/// The type name of Primitive<T>; a type without one cannot be held by a node.
template <class T>
inline constexpr char const* PrimitiveTypeName = nullptr;
template <>
inline constexpr char const* PrimitiveTypeName<bool> = "zarn.configuration.node.Bool";
template <>
inline constexpr char const* PrimitiveTypeName<std::string> = "zarn.configuration.node.String";
template <>
inline constexpr char const* PrimitiveTypeName<std::uint16_t> = "zarn.configuration.node.UInt16";
template <>
inline constexpr char const* PrimitiveTypeName<std::uint32_t> = "zarn.configuration.node.UInt32";
template <>
inline constexpr char const* PrimitiveTypeName<std::int32_t> = "zarn.configuration.node.Int32";
template <>
inline constexpr char const* PrimitiveTypeName<std::int64_t> = "zarn.configuration.node.Int64";
template <>
inline constexpr char const* PrimitiveTypeName<double> = "zarn.configuration.node.Double";

/// Throws the object::BadCast of Read for a node that is missing.
[[noreturn]] void ThrowMissing(char const* typeName, Map const& map, std::string_view path);

/// A node that holds a value of type T. Its GetValuePtr() gives an object::Primitive<T>.
template <class T>
class Primitive : public object::Typed<Primitive<T>, Value> {
public:
    static constexpr char const* TypeName = PrimitiveTypeName<T>;
    static_assert(TypeName != nullptr, "no node holds this type");

    /// Made by Map::Schema and Dynamic::Add only.
    Primitive(Location const& location, std::shared_ptr<schema::ValueDescription const> valueDescription)
        : object::Typed<Primitive<T>, Value>(location, std::move(valueDescription)) {}

    /// The effective value.
    T Get() const { return this->GetValuePtr()->template As<object::Primitive<T>>().Get(); }

    /// Sets the value and ends an override. Throws Error when the node's rule refuses it.
    void Set(T value) { this->Store(std::make_shared<object::Primitive<T> const>(std::move(value))); }

    /// Overrides the value for this run. Throws Error when the node's rule refuses it.
    void Override(T value) { this->StoreOverride(std::make_shared<object::Primitive<T> const>(std::move(value))); }
};

/// The effective value of the node with a path below a map ("name", "video.width").
/// Throws object::BadCast when there is no such node or it holds another type. Thread: any; waits for no change.
template <class T>
T Read(Map const& map, std::string_view path) {
    auto const node = map.Find(boost::string_view(path.data(), path.size()));
    if (!node) ThrowMissing(PrimitiveTypeName<T>, map, path);
    return node->template As<Primitive<T>>().Get();
}

} // namespace zarn::configuration::node
