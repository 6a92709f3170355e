#pragma once

#include <zarn/object/typed.h>

#include <cstdint>

namespace zarn::meta::data {

/// The part of the picture that a rule watches. Never changes, so any thread may read it.
class Zone : public object::Typed<Zone> {
public:
    static constexpr char const* TypeName = "zarn.meta.data.Zone";

    /// The type of an area.
    static constexpr std::uint32_t Field = 0;
    /// The type of a line that is crossed.
    static constexpr std::uint32_t Line = 1;

    /// zoneType  Field, Line, or another number of the host
    explicit Zone(std::uint32_t zoneType) noexcept : type(zoneType) {}

    /// Field, Line, or another number of the host.
    std::uint32_t GetType() const noexcept { return type; }

private:
    std::uint32_t type;
};

} // namespace zarn::meta::data
