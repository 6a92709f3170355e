#pragma once

#include <zarn/object/typed.h>

#include <cstdint>

namespace zarn::meta::data::count {

/// What a counting rule counted. Never changes, so any thread may read it.
class Value : public object::Typed<Value> {
public:
    static constexpr char const* TypeName = "zarn.meta.data.count.Value";

    /// counted  may be negative
    explicit Value(std::int32_t counted) noexcept : value(counted) {}

    /// The count; may be negative.
    std::int32_t GetValue() const noexcept { return value; }

private:
    std::int32_t value;
};

} // namespace zarn::meta::data::count
