#pragma once

#include <zarn/meta/data/video_info.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zarn::host::video {

/// What a channel is doing.
enum class ChannelState {
    Described,  ///< No source: nothing runs.
    Connecting, ///< The source is being opened; no frame has arrived.
    Running,    ///< Frames arrive.
    Failed      ///< The source failed (ChannelStatus::detail says why); it is reopened after a pause.
};

/// Lower-case name of a state, for logs and status documents: "described", "connecting", "running", "failed".
constexpr std::string_view ToString(ChannelState state) {
    constexpr std::array<std::string_view, 4> Names{"described", "connecting", "running", "failed"};
    return Names[static_cast<std::size_t>(state)];
}

/// A channel as it is at one moment.
struct ChannelStatus {
    /// Identifier of the channel.
    std::string id;

    /// What the channel is doing.
    ChannelState state = ChannelState::Described;

    /// Why the channel is in this state. Public: names no address, path, user or password; the log does.
    /// Empty when there is nothing to say.
    std::string detail;

    /// What Engine::Describe() gives.
    meta::data::VideoInfo info;

    /// Time since the newest frame; none before the first.
    std::optional<std::chrono::milliseconds> frameAge;

    /// How many times the source was opened again after a failure.
    std::uint64_t restarts = 0;
};

} // namespace zarn::host::video
