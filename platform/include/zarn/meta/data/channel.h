#pragma once

#include <zarn/object/typed.h>

#include <cstdint>

namespace zarn::meta::data {

/// The video channel that an event was seen on. Never changes, so any thread may read it.
class Channel : public object::Typed<Channel> {
public:
    static constexpr char const* TypeName = "zarn.meta.data.Channel";

    /// number  the number of the channel in the configuration
    explicit Channel(std::uint32_t number) noexcept : id(number) {}

    /// The number of the channel in the configuration.
    std::uint32_t GetId() const noexcept { return id; }

private:
    std::uint32_t id;
};

} // namespace zarn::meta::data
