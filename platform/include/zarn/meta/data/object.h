#pragma once

#include <zarn/meta/data/object_base.h>

#include <cstdint>

namespace zarn::meta::data {

/// A tracked object: a person, a vehicle. It may carry a classification::Confidence and a classification::Name.
/// Thread: as Container.
class Object : public object::Typed<Object, ObjectBase> {
public:
    static constexpr char const* TypeName = "zarn.meta.data.Object";

    /// number  the number by which the tracker knows it
    explicit Object(std::uint32_t number) noexcept;
};

} // namespace zarn::meta::data
