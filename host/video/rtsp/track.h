#pragma once

#include "host/video/rtp/sender.h"
#include "host/video/viewer_queue.h"

#include <boost/asio/ip/udp.hpp>

#include <cstdint>

namespace zarn::host::video::rtsp {

class Hub;

/// One track of a session: what waits for the viewer, and where it goes. Thread: the session's worker.
struct Track {
    Hub* hub = nullptr; ///< where it comes from; outlives the track
    rtp::Sender sender;
    ViewerQueue queue;
    std::uint32_t clockRate = 90000;
    std::uint8_t channel = 0;                ///< interleaved: of RTP; the next one is for RTCP
    boost::asio::ip::udp::endpoint rtpPeer;  ///< over UDP
    boost::asio::ip::udp::endpoint rtcpPeer; ///< over UDP
    bool isSending = false;                  ///< a part of an access unit has been sent
    bool isEnding = false;                   ///< BYE follows what waits
};

} // namespace zarn::host::video::rtsp
