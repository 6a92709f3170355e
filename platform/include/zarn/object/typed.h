#pragma once

#include <zarn/object/object.h>

namespace zarn::object {

/// Gives a type its identity: `class Map : public Typed<Map, Node>` with a static TypeName in Map.
/// Derived  the type, with `static constexpr char const* TypeName`
/// Base     the type that it is derived from, Object or a type derived from it
template <class Derived, class Base = Object>
class Typed : public Base {
public:
    using Base::Base;

    /// The hash of the type's name.
    std::uint32_t GetTypeHash() const noexcept override { return OwnHash(); }

    /// The name of the type.
    char const* GetTypeName() const noexcept override { return Derived::TypeName; }

    /// Whether the type or one of its bases has this hash.
    bool HasType(std::uint32_t typeHash) const noexcept override {
        return typeHash == OwnHash() || Base::HasType(typeHash);
    }

private:
    static std::uint32_t OwnHash() noexcept {
        constexpr auto hash = type::Hash(Derived::TypeName);
        return hash;
    }
};

} // namespace zarn::object
