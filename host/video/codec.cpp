#include "host/video/codec.h"

#include <algorithm>
#include <array>

namespace zarn::host::video {
namespace {

constexpr std::array Rows{
    CodecTraits{"h264", "video/x-h264", "h264parse", "avdec_h264", "rtph264pay", "x264enc",
                "tune=zerolatency speed-preset=ultrafast"},
    CodecTraits{"h265", "video/x-h265", "h265parse", "avdec_h265", "rtph265pay", "x265enc",
                "tune=zerolatency speed-preset=ultrafast"},
};

template <class Predicate>
std::optional<Codec> Find(Predicate matches) {
    auto const row = std::ranges::find_if(Rows, matches);
    if (row == Rows.end()) return std::nullopt;
    return static_cast<Codec>(row - Rows.begin());
}

} // namespace

CodecTraits const& GetTraits(Codec codec) { return Rows[static_cast<std::size_t>(codec)]; }

std::optional<Codec> CodecFromName(std::string_view name) {
    return Find([name](CodecTraits const& row) { return row.name == name; });
}

std::optional<Codec> CodecFromMediaType(std::string_view mediaType) {
    return Find([mediaType](CodecTraits const& row) { return row.mediaType == mediaType; });
}

} // namespace zarn::host::video
