#include "host/video/format.h"

#include <string>

namespace zarn::host::video {

std::optional<Format> ReadFormat(GstCaps* caps) {
    if (caps == nullptr || gst_caps_get_size(caps) == 0) return std::nullopt;
    auto const* structure = gst_caps_get_structure(caps, 0);
    auto const codec = CodecFromMediaType(gst_structure_get_name(structure));
    gint width = 0;
    gint height = 0;
    if (!codec || gst_structure_get_int(structure, "width", &width) == FALSE ||
        gst_structure_get_int(structure, "height", &height) == FALSE || width <= 0 || height <= 0) {
        return std::nullopt;
    }
    Format format{*codec, static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), std::nullopt, nullptr};
    FrameRate rate;
    if (gst_structure_get_fraction(structure, "framerate", &rate.numerator, &rate.denominator) != FALSE &&
        rate.numerator > 0 && rate.denominator > 0) {
        format.rate = rate;
    }
    format.caps.reset(gst_caps_ref(caps), MiniObjectRelease());
    return format;
}

meta::data::VideoInfo ToVideoInfo(Format const& format, std::optional<FrameRate> measured) {
    auto const rate = format.rate ? *format.rate : measured.value_or(FrameRate{0, 1});
    return {{format.width, format.height},
            std::string(GetTraits(format.codec).mediaType),
            rate.numerator,
            rate.denominator};
}

} // namespace zarn::host::video
