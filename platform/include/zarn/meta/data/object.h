#pragma once

#include <zarn/meta/data/container.h>

#include <cstdint>

namespace zarn::meta::data {

/// What everything that is tracked has in common. Its properties, such as classification::Confidence, are in it as
/// objects. Thread: as Container.
class ObjectBase : public object::Typed<ObjectBase, Container> {
public:
    static constexpr char const* TypeName = "zarn.meta.data.ObjectBase";

    /// The number by which the tracker knows it.
    std::uint32_t GetId() const noexcept { return id; }

protected:
    /// number  the number by which the tracker knows it
    explicit ObjectBase(std::uint32_t number) noexcept : id(number) {}

private:
    std::uint32_t id;
};

/// A tracked object: a person, a vehicle. It may carry a classification::Confidence and a classification::Name.
/// Thread: as Container.
class Object : public object::Typed<Object, ObjectBase> {
public:
    static constexpr char const* TypeName = "zarn.meta.data.Object";

    /// number  the number by which the tracker knows it
    explicit Object(std::uint32_t number) noexcept : Typed(number) {}
};

} // namespace zarn::meta::data
