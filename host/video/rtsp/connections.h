#pragma once

#include "host/video/handle.h"

#include <gst/rtsp-server/rtsp-server.h>

#include <chrono>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace zarn::host::video::rtsp {

/// The connections of an RTSP server: how many there are, which watch a channel, which only sit there.
/// Thread: the one that the server is attached to.
class Connections {
public:
    using Clock = std::chrono::steady_clock;

    /// How many may be there at the same time.
    static constexpr std::size_t Maximum = 128;

    /// How long one may be there without a session.
    static constexpr std::chrono::seconds Patience{30};

    /// True when there is room for one more.
    bool HasRoom() const { return since.size() < Maximum; }

    /// A connection has come.
    void Add(GstRTSPClient* client);

    /// Closes those that have had no session for `Patience`.
    void CloseIdle(Clock::time_point now);

    using Client = ObjectHandle<GstRTSPClient>;

    /// Those that have a session with the media at this path.
    std::vector<Client> FindViewers(std::string const& path);

    /// Closes connections and ends their sessions.
    static void Close(std::vector<Client> const& clients);

    /// Closes all.
    void CloseAll();

    /// True when nobody is connected.
    bool IsEmpty() const { return since.empty(); }

private:
    static void OnClosed(GstRTSPClient* client, gpointer self);
    static bool HasSession(GstRTSPClient* client);

    template <class Predicate>
    std::vector<Client> Select(Predicate wanted);

    std::map<GstRTSPClient*, Clock::time_point> since; ///< when it came or was last seen with a session
};

} // namespace zarn::host::video::rtsp
