#pragma once

#include <zarn/object/bad_cast.h>
#include <zarn/type/hash.h>

#include <cstdint>

namespace zarn::object {

/// The base of everything that is told apart by a type name at run time.
/// A type has a name (`static constexpr char const* TypeName`) and is identified by the hash of that name, so that
/// types are the same across libraries. Types derive from Typed<Derived, Base>, which implements what is virtual here.
/// Thread: any; the type of an object never changes.
class Object {
public:
    static constexpr char const* TypeName = "zarn.object.Object";

    virtual ~Object();

    /// The hash of GetTypeName(), see type::Hash.
    virtual std::uint32_t GetTypeHash() const noexcept;

    /// The name of the object's own, most derived type.
    virtual char const* GetTypeName() const noexcept;

    /// Whether the object's own type or one of its bases has this hash.
    virtual bool HasType(std::uint32_t typeHash) const noexcept;

    /// The error for asking this object for a type that it is not.
    /// typeName  the type that was asked for
    virtual BadCast BadCastError(char const* typeName) const;

    /// Whether the object is a T or is derived from T.
    template <class T>
    bool Is() const noexcept {
        constexpr auto hash = type::Hash(T::TypeName);
        return HasType(hash);
    }

    /// The object as a T. Throws BadCastError(T::TypeName) when it is not one.
    template <class T>
    T const& As() const {
        if (!Is<T>()) throw BadCastError(T::TypeName);
        return static_cast<T const&>(*this);
    }

    /// The object as a T. Throws BadCastError(T::TypeName) when it is not one.
    template <class T>
    T& As() {
        if (!Is<T>()) throw BadCastError(T::TypeName);
        return static_cast<T&>(*this);
    }

protected:
    Object() = default;
    Object(Object const&) = default;
    Object& operator=(Object const&) = default;
};

} // namespace zarn::object
