#pragma once

#include <concepts>
#include <stdexcept>
#include <type_traits>

namespace zarn::type {

/// A set of the flags of an enumeration, whose enumerators are powers of two.
/// Enum        the enumeration
/// Underlying  the unsigned integer that holds the set
/// Bits        the largest flag value that the enumeration has room for; no flag above it can be in the set
template <class Enum, std::unsigned_integral Underlying, Underlying Bits>
requires std::is_enum_v<Enum>

class Flags {
public:
    /// The empty set.
    constexpr Flags() noexcept = default;

    /// The set of one flag. Implicit, so that one flag can be given where a set is asked for.
    constexpr Flags(Enum flag) : Flags(static_cast<Underlying>(flag)) {}

    /// The set with a raw value.
    /// Throws std::invalid_argument when the value has a flag above Bits.
    constexpr explicit Flags(Underlying raw) : value(raw) {
        if (raw / 2 >= Bits) throw std::invalid_argument("flag value out of range");
    }

    /// Whether all flags of another set are in this one.
    constexpr bool Has(Flags other) const noexcept { return (value & other.value) == other.value; }

    /// The raw value.
    constexpr Underlying GetValue() const noexcept { return value; }

    /// The union of two sets.
    friend constexpr Flags operator|(Flags left, Flags right) noexcept {
        left.value = static_cast<Underlying>(left.value | right.value);
        return left;
    }

    friend constexpr bool operator==(Flags, Flags) noexcept = default;

private:
    Underlying value = 0;
};

} // namespace zarn::type
