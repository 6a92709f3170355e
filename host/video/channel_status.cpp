#include "host/video/channel_status.h"

#include <array>

namespace zarn::host::video {

std::string_view ToString(ChannelState state) {
    constexpr std::array<std::string_view, 4> Names{"described", "connecting", "running", "failed"};
    return Names[static_cast<std::size_t>(state)];
}

} // namespace zarn::host::video
