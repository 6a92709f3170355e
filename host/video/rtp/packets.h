#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::host::video::rtp {

/// What a client must know of a medium before it can read its packets. Source: RFC 8866, 5.14 and 6.
struct MediaFormat {
    std::string media = "video";
    std::uint8_t payloadType = 96;
    std::uint32_t clockRate = 90000;     ///< of RTP timestamps, in hertz
    std::vector<std::string> attributes; ///< of the session description, without "a=", such as "rtpmap:96 H264/90000"
};

/// The payload of one RTP packet: its own few bytes, then a part of the access unit, which is shared.
struct Packet {
    std::array<std::byte, 4> prefix{};
    std::uint8_t prefixSize = 0;
    bool marker = false; ///< the last packet of an access unit
    std::byte const* body = nullptr;
    std::uint32_t bodySize = 0;

    /// Bytes of the payload.
    std::size_t GetSize() const { return prefixSize + std::size_t{bodySize}; }
};

/// The packets of one access unit, without RTP headers, which differ from viewer to viewer. Never changes; all viewers
/// share it.
struct Packets {
    std::shared_ptr<MediaFormat const> format;
    std::vector<Packet> list;
    std::size_t bytes = 0;              ///< of all payloads
    std::shared_ptr<void const> memory; ///< what the bodies point into
};

/// Packets with these payloads; the last one has the marker. For media that this program packetises itself.
std::shared_ptr<Packets const> MakePackets(std::shared_ptr<MediaFormat const> format,
                                           std::vector<std::string> payloads);

} // namespace zarn::host::video::rtp
