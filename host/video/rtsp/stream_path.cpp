#include "host/video/rtsp/stream_path.h"

#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>
#include <charconv>

namespace zarn::host::video::rtsp {
namespace {

constexpr std::string_view Schemes[]{"rtsp://", "rtspu://"};
constexpr std::string_view Prefix = "/channels/";
constexpr std::string_view TrackPrefix = "stream=";

/// The URI from its authority on, if it has one.
std::optional<std::string_view> WithoutScheme(std::string_view uri) {
    auto const scheme = std::ranges::find_if(Schemes, [uri](auto each) { return boost::istarts_with(uri, each); });
    if (scheme == std::end(Schemes)) return std::nullopt;
    return uri.substr(scheme->size());
}

} // namespace

std::optional<StreamPath> ParseStreamPath(std::string_view uri) {
    if (auto const rest = WithoutScheme(uri)) uri = rest->substr(std::min(rest->find('/'), rest->size()));
    uri = uri.substr(0, uri.find('?'));
    if (!uri.starts_with(Prefix)) return std::nullopt;
    uri.remove_prefix(Prefix.size());
    auto const end = std::min(uri.find('/'), uri.size());
    StreamPath path{std::string(uri.substr(0, end))};
    uri.remove_prefix(std::min(end + 1, uri.size()));
    if (path.id.empty()) return std::nullopt;
    if (uri.empty()) return path;
    if (!uri.starts_with(TrackPrefix)) return std::nullopt;
    uri.remove_prefix(TrackPrefix.size());
    std::size_t track = 0;
    auto const [last, error] = std::from_chars(uri.data(), uri.data() + uri.size(), track);
    if (error != std::errc() || last != uri.data() + uri.size()) return std::nullopt;
    path.track = track;
    return path;
}

std::string MakeTrackName(std::size_t track) { return std::string(TrackPrefix) + std::to_string(track); }

std::string MakeChannelUri(std::string_view uri, std::string const& id, std::string_view authority) {
    if (auto const rest = WithoutScheme(uri)) authority = rest->substr(0, rest->find('/'));
    return std::string("rtsp://").append(authority).append(Prefix).append(id);
}

} // namespace zarn::host::video::rtsp
