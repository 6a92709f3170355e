#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace zarn::host::video::rtsp {

/// What the URI of a request names: a channel, `/channels/ID`, or one of its tracks, `/channels/ID/stream=0`.
struct StreamPath {
    std::string id;
    std::optional<std::size_t> track = {};

    bool operator==(StreamPath const&) const = default;
};

/// Reads the URI of a request, absolute or as a path; a query and a slash at the end of a channel's path do not matter.
/// None when it names nothing of this kind. Pure.
std::optional<StreamPath> ParseStreamPath(std::string_view uri);

/// The path of a track, behind that of its channel and a slash.
std::string MakeTrackName(std::size_t track);

/// The absolute URI of a channel, without a slash at its end.
/// uri        of a request for it
/// authority  address and port of the server, for a request without them
std::string MakeChannelUri(std::string_view uri, std::string const& id, std::string_view authority);

} // namespace zarn::host::video::rtsp
