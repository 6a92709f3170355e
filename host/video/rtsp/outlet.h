#pragma once

#include <string>

namespace zarn::host::video::rtsp {

struct Track;

/// How the packets of a session leave: over its connection or over UDP. Thread: the session's worker.
class Outlet {
public:
    Outlet() = default;
    virtual ~Outlet() = default;
    Outlet(Outlet const&) = delete;
    Outlet& operator=(Outlet const&) = delete;

    /// Sends what waits in the queues of the session's tracks, as far as that is possible without waiting; goes on by
    /// itself later.
    virtual void Flush() = 0;

    /// Sends an RTCP packet of a track.
    virtual void SendControl(Track const& track, std::string packet) = 0;
};

} // namespace zarn::host::video::rtsp
