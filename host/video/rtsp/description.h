#pragma once

#include "host/video/rtp/packets.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zarn::host::video::rtsp {

/// What a viewer can get of a channel: its media, in the order of their tracks.
using Tracks = std::vector<std::shared_ptr<rtp::MediaFormat const>>;

/// The session description of a channel, live and without an end.
/// session  a number that no other description has
/// address  of the server, an IPv4 address
/// Pure. Source: RFC 8866; RFC 2326, C.
std::string WriteDescription(Tracks const& tracks, std::uint64_t session, std::string const& address);

} // namespace zarn::host::video::rtsp
