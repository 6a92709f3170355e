#pragma once

#include <zarn/object/typed.h>

#include <cstdint>
#include <string>
#include <utility>

namespace zarn::object {

/// The type name of Primitive<T>; a type without one cannot be held by a Primitive.
template <class T>
inline constexpr char const* PrimitiveTypeName = nullptr;
template <>
inline constexpr char const* PrimitiveTypeName<bool> = "zarn.object.Bool";
template <>
inline constexpr char const* PrimitiveTypeName<std::string> = "zarn.object.String";
template <>
inline constexpr char const* PrimitiveTypeName<std::uint16_t> = "zarn.object.UInt16";
template <>
inline constexpr char const* PrimitiveTypeName<std::uint32_t> = "zarn.object.UInt32";
template <>
inline constexpr char const* PrimitiveTypeName<std::int32_t> = "zarn.object.Int32";
template <>
inline constexpr char const* PrimitiveTypeName<std::int64_t> = "zarn.object.Int64";
template <>
inline constexpr char const* PrimitiveTypeName<double> = "zarn.object.Double";

/// A value that never changes, so that any thread may read it for as long as it holds the object.
template <class T, class Base = Object>
class Primitive : public Typed<Primitive<T, Base>, Base> {
public:
    static constexpr char const* TypeName = PrimitiveTypeName<T>;
    static_assert(TypeName != nullptr, "no primitive object holds this type");

    /// initial  the value
    explicit Primitive(T initial) : value(std::move(initial)) {}

    /// The value; the reference holds as long as the object.
    T const& Get() const noexcept { return value; }

private:
    T const value;
};

} // namespace zarn::object
