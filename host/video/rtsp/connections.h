#pragma once

#include "host/access/connection_count.h"
#include "host/video/gstreamer.h"

#include <gst/rtsp-server/rtsp-server.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace zarn::host::video::rtsp {

/// The connections of an RTSP server: how many there are, which watch a channel, which only sit there. Each is served
/// by a thread of its own; they are ended by shutting down their socket, upon which that thread takes them apart.
/// Thread: any.
class Connections {
public:
    using Clock = std::chrono::steady_clock;

    /// How many may be there at the same time.
    static constexpr std::size_t Maximum = 128;

    /// How long one may be there without a session.
    static constexpr std::chrono::seconds Patience{10};

    /// How many bytes one may send from one call of EndMisused() to the next. Viewers send some hundreds a second;
    /// GStreamer takes headers without end and keeps them all.
    static constexpr std::uint64_t MaximumReceived = std::uint64_t{256} * 1024;

    Connections();
    ~Connections();
    Connections(Connections const&) = delete;
    Connections& operator=(Connections const&) = delete;

    /// How many there are.
    std::size_t GetCount() const;

    /// Adds a new connection until it closes.
    /// slot  null: the connection exceeds a limit, and is ended
    void Add(GstRTSPClient* client, ConnectionCount::Slot slot);

    /// Ends those that have had no session for `Patience`, and those that have sent too much since the last call.
    void EndMisused(Clock::time_point now);

    using Client = ObjectHandle<GstRTSPClient>;

    /// Those that have a session with the media at this path.
    std::vector<Client> FindViewers(std::string const& path) const;

    /// Ends connections and their sessions.
    void End(std::vector<Client> const& clients);

    /// Ends all and waits until they are gone; false when some are still there after the timeout.
    bool EndAll(std::chrono::milliseconds timeout);

private:
    class Socket;

    struct Entry {
        Client client;
        std::unique_ptr<Socket> socket;
        ConnectionCount::Slot slot; ///< null: refused, and ending
        Clock::time_point seen;     ///< when it was accepted or last seen with a session
        std::uint64_t received;     ///< bytes, at the last call of EndMisused()
    };

    /// Shared with the closing of a connection that outlives the server.
    struct State {
        std::mutex mutex; ///< guards entries
        std::condition_variable isEmpty;
        std::map<GstRTSPClient*, Entry> entries;
    };

    static void OnClosed(GstRTSPClient* client, gpointer state);
    void ShutDown(GstRTSPClient* client);
    std::vector<Client> GetAll() const;

    std::shared_ptr<State> const state;
};

} // namespace zarn::host::video::rtsp
