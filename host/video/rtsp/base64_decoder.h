#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zarn::host::video::rtsp {

/// Decodes the requests in a tunnel, where each is encoded on its own, so that padding may occur in the middle. White
/// space is skipped. Thread: one at a time. Source: RFC 4648, 4.
class Base64Decoder {
public:
    /// The bytes that are complete with these characters; none when they are not Base64.
    std::optional<std::string> Decode(std::string_view text);

private:
    std::uint32_t bits = 0;
    int characters = 0; ///< of the present group of four, padding included
    int padding = 0;
};

} // namespace zarn::host::video::rtsp
