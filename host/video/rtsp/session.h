#pragma once

#include "host/access/connection_count.h"
#include "host/video/rtsp/mount.h"
#include "host/video/rtsp/outlet.h"
#include "host/video/rtsp/request.h"
#include "host/video/rtsp/response.h"
#include "host/video/rtsp/stream_path.h"
#include "host/video/rtsp/track.h"
#include "host/video/rtsp/transport.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace zarn::host::video::rtsp {

class Worker;

/// What a viewer has set up: tracks of one channel, and whether they play. It ends by TEARDOWN, with its connection
/// (over UDP only when it does not play: the viewer may come back), without a sign of life, or with its stream.
/// Thread: its worker's. Source: RFC 2326, 3.4 and A.
class Session : public std::enable_shared_from_this<Session> {
public:
    using Clock = std::chrono::steady_clock;

    /// A session without a sign of life for so long has ended.
    static constexpr std::chrono::seconds Timeout{60};

    /// How long a session stays after the end of its stream, so that the viewer hears of it.
    static constexpr std::chrono::milliseconds Farewell{150};

    /// worker  must outlive the session
    /// id      unguessable: it is what a viewer proves that the session is its own with
    /// slot    held as long as the session lives
    Session(Worker& worker, std::shared_ptr<Mount const> mount, std::string id, ConnectionCount::Slot slot);
    ~Session();
    Session(Session const&) = delete;
    Session& operator=(Session const&) = delete;

    std::string const& GetId() const { return id; }

    Mount const& GetMount() const { return *mount; }

    bool IsPlaying() const { return isPlaying; }

    /// Whether its packets go over a connection.
    bool IsInterleaved() const { return !udpOutlet && outlet != nullptr; }

    /// Whether packets go over this.
    bool UsesOutlet(Outlet const& other) const { return outlet == &other; }

    bool HasEnded() const { return hasEnded; }

    /// The tracks; null where one has not been set up.
    std::vector<std::shared_ptr<Track>> const& GetTracks() const { return tracks; }

    /// Sets a track up over a connection.
    /// channel   of RTP
    /// connection  must outlive the session, or end it
    Track& SetUp(std::size_t track, std::uint8_t channel, Outlet& connection);

    /// Sets a track up over UDP. Throws std::runtime_error when the system gives no ports.
    Track& SetUp(std::size_t track, boost::asio::ip::address const& peer, Transport const& transport);

    /// Sets what is called when the session ends by itself, because of its viewer's silence or with its stream.
    void SetOnExpiry(std::function<void()> function) { onExpiry = std::move(function); }

    /// Answers PLAY, PAUSE and TEARDOWN.
    /// uri  of the channel, without a slash at its end
    Response Handle(Request const& request, StreamPath const& path, std::string const& uri);

    /// Begins to send after a PLAY has been answered.
    void Proceed();

    /// The viewer gave a sign of life.
    void Touch(Clock::time_point now) { seen = now; }

    /// Sends reports that are due; ends the session when its viewer has been silent for too long.
    void Sweep(Clock::time_point now);

    /// New access units of a track.
    /// isAfterLoss  some before them are missing
    void Deliver(std::size_t track, std::span<AccessUnitPtr const> units, bool isAfterLoss);

    /// Sends BYE behind what waits, and ends the session soon.
    void EndOfStream();

    /// An access unit of a track, of this session or another one, has been sent.
    void OnSent(Track const& track);

    /// Ends it at once. Ending twice is harmless.
    void End();

private:
    std::shared_ptr<Track> MakeTrack(std::size_t index);
    Response Play(Request const& request, std::string const& uri);
    Response Pause();
    void SendReport(Track& track);
    void SayGoodbye(Track& track);
    void ForgetPeers();

    Worker& worker;
    std::shared_ptr<Mount const> const mount;
    std::string const id;
    ConnectionCount::Slot const slot;
    std::vector<std::shared_ptr<Track>> tracks;
    Outlet* outlet = nullptr;
    std::shared_ptr<Outlet> udpOutlet;
    std::function<void()> onExpiry;
    Clock::time_point seen = Clock::now();
    Clock::time_point reported{};
    bool isPlaying = false;
    bool hasEnded = false;
};

} // namespace zarn::host::video::rtsp
