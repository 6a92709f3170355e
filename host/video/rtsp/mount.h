#pragma once

#include "host/video/rtsp/description.h"
#include "host/video/rtsp/hub.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::host::video::rtsp {

/// What is served at a channel's path: its tracks, each with a hub for every worker. Thread: any.
class Mount {
public:
    /// The hubs of one track, by worker.
    using Hubs = std::vector<std::shared_ptr<Hub>>;

    /// id      of the channel
    /// tracks  in their order; not empty
    Mount(std::string id, std::vector<Hubs> tracks);

    /// The channel's identifier.
    std::string const& GetId() const { return id; }

    /// How many tracks there are.
    std::size_t CountTracks() const { return tracks.size(); }

    /// The hub of a track for a worker.
    Hub& GetHub(std::size_t track, std::size_t worker) const { return *tracks[track][worker]; }

    /// What a new viewer would get now; none when a track has nothing to view.
    std::optional<Tracks> Describe() const;

    /// Ends the sessions of all viewers.
    void End() const;

private:
    std::string const id;
    std::vector<Hubs> const tracks;
};

/// The paths that are served. Thread: any.
class Mounts {
public:
    /// Serves a channel, in place of what was there.
    void Set(std::shared_ptr<Mount const> mount);

    /// Serves it no more. Returns what was served; null: nothing.
    std::shared_ptr<Mount const> Remove(std::string_view id);

    /// Null when there is no such channel.
    std::shared_ptr<Mount const> Find(std::string_view id) const;

private:
    mutable std::mutex mutex; ///< guards `mounts`
    std::map<std::string, std::shared_ptr<Mount const>, std::less<>> mounts;
};

} // namespace zarn::host::video::rtsp
