#pragma once

#include "host/video/channel_settings.h"
#include "host/video/channel_status.h"
#include "host/video/rtsp_settings.h"
#include "host/video/snapshot.h"

#include <zarn/meta/data/video_info.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::host::video {

/// The host's video: opens the sources of the channels, serves them over RTSP at `rtsp://ADDRESS:PORT/channels/ID` and
/// makes still images of them. A source that fails is opened again after a pause; the other channels go on.
/// Thread: every function may be called from any thread, and at the same time; those that say "waits" not from within a
/// snapshot's callback.
class Engine {
public:
    /// Binds the RTSP port. Connections wait until SetChannels() is called for the first time, so that no client meets
    /// a server whose settings are incomplete. Throws std::runtime_error when the port cannot be bound, which names the
    /// port, or a thread cannot be started.
    explicit Engine(RtspSettings const& settings);

    /// Stop().
    ~Engine();

    Engine(Engine const&) = delete;
    Engine& operator=(Engine const&) = delete;

    /// Makes the channels those of `channels`, in this order. A channel whose settings are the same goes on
    /// undisturbed; one whose source changed restarts; one that is gone ends, and so do its streams. A source that
    /// CheckSource() refuses leaves its channel Failed. So does a channel for which no thread can be
    /// started, until it is set again. Waits until what ends has ended, under half a second: a source that hangs is
    /// left to itself. Then the RTSP server accepts connections, if it did not before. Throws std::invalid_argument
    /// when two channels have the same identifier; nothing has changed then. Does nothing after Stop().
    void SetChannels(std::vector<ChannelSettings> const& channels);

    /// Switches authentication for new connections; `ha1` as in RtspSettings. Existing connections keep the
    /// authentication that they were accepted with. The same again changes nothing.
    void SetAuthentication(bool authenticate, std::string const& ha1);

    /// Bounds for new connections.
    void SetLimits(ConnectionLimits const& limits);

    /// The bound RTSP port.
    std::uint16_t GetPort() const;

    /// The present description of a channel: what the video really is, before that what the settings say. An unknown
    /// channel gives VideoInfo(). Cheap, never blocks on video.
    meta::data::VideoInfo Describe(std::string_view id) const;

    /// Asks for a still image of a channel and returns at once. `done` is called exactly once, within three seconds, on
    /// any thread, possibly before this function returns; it must not throw and must not block.
    void RequestSnapshot(std::string_view id, std::function<void(Snapshot)> done);

    /// All channels in the order of SetChannels().
    std::vector<ChannelStatus> GetStatus() const;

    /// Ends streams, connections, sources and waiting snapshot requests; waits until all has ended, about a second at
    /// most: a source that hangs is left to the destructor, which waits for it. Stopping twice is harmless. Afterwards
    /// no channel is known.
    void Stop();

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace zarn::host::video
