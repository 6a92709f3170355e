#include "host/video/rtsp/mount.h"

#include <utility>

namespace zarn::host::video::rtsp {

Mount::Mount(std::string id, std::vector<Hubs> tracks) : id(std::move(id)), tracks(std::move(tracks)) {}

std::optional<Tracks> Mount::Describe() const {
    Tracks formats;
    for (auto const& hubs : tracks) {
        auto const recent = hubs.front()->GetStream().GetRecent();
        if (!recent || !recent->units.back()->packets) return std::nullopt;
        formats.push_back(recent->units.back()->packets->format);
    }
    return formats;
}

void Mount::End() const {
    for (auto const& hubs : tracks) {
        for (auto const& hub : hubs) hub->OnEnd();
    }
}

void Mounts::Set(std::shared_ptr<Mount const> mount) {
    std::scoped_lock const lock(mutex);
    mounts.insert_or_assign(mount->GetId(), std::move(mount));
}

std::shared_ptr<Mount const> Mounts::Remove(std::string_view id) {
    std::scoped_lock const lock(mutex);
    auto const found = mounts.find(id);
    if (found == mounts.end()) return nullptr;
    auto mount = std::move(found->second);
    mounts.erase(found);
    return mount;
}

std::shared_ptr<Mount const> Mounts::Find(std::string_view id) const {
    std::scoped_lock const lock(mutex);
    auto const found = mounts.find(id);
    return found == mounts.end() ? nullptr : found->second;
}

} // namespace zarn::host::video::rtsp
