#include <zarn/meta/data/video_info.h>

#include <utility>

namespace zarn::meta::data {

VideoInfo::VideoInfo() : VideoInfo({0, 0}, "", 0, 1) {}

VideoInfo::VideoInfo(std::pair<std::uint32_t, std::uint32_t> resolution, std::string codec, std::int32_t numerator,
                     std::int32_t denominator)
    : resolution(resolution), codec(std::move(codec)), numerator(numerator), denominator(denominator) {}

} // namespace zarn::meta::data
