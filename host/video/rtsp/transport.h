#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zarn::host::video::rtsp {

/// How the packets of a track reach a viewer, as the viewer asks for it: over its connection, or over UDP to the
/// address that the connection comes from. Source: RFC 2326, 12.39.
struct Transport {
    bool isInterleaved = false;
    std::optional<std::uint8_t> channel = {}; ///< interleaved: the first of two; none: the server chooses
    std::uint16_t rtpPort = 0;                ///< UDP: the viewer's port for RTP
    std::uint16_t rtcpPort = 0;               ///< UDP: the viewer's port for RTCP

    bool operator==(Transport const&) const = default;
};

/// The first form in a Transport field that this server serves: RTP/AVP by unicast to play, interleaved or over UDP.
/// None when there is none. Pure.
std::optional<Transport> ChooseTransport(std::string_view field);

} // namespace zarn::host::video::rtsp
