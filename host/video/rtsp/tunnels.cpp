#include "host/video/rtsp/tunnels.h"

#include <utility>

namespace zarn::host::video::rtsp {

bool Tunnels::Add(std::string const& cookie, Half half) {
    std::scoped_lock const lock(mutex);
    return halves.emplace(cookie, std::move(half)).second;
}

void Tunnels::Remove(std::string const& cookie) {
    std::scoped_lock const lock(mutex);
    halves.erase(cookie);
}

std::optional<Tunnels::Half> Tunnels::Find(std::string_view cookie) const {
    std::scoped_lock const lock(mutex);
    auto const found = halves.find(cookie);
    if (found == halves.end()) return std::nullopt;
    return found->second;
}

} // namespace zarn::host::video::rtsp
