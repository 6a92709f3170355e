#pragma once

#include "host/video/rtp/packets.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace zarn::host::video::rtp {

/// One viewer's RTP stream of one medium: its synchronization source, sequence numbers and timestamps, which begin at
/// random values, and its RTCP packets. Thread: one at a time. Source: RFC 3550.
class Sender {
public:
    /// Bytes of an RTP header.
    static constexpr std::size_t HeaderSize = 12;

    /// Throws std::runtime_error when the system gives no random bytes.
    Sender();

    /// The synchronization source.
    std::uint32_t GetSource() const { return source; }

    /// The synchronization source as eight hexadecimal digits; also the source's name in reports.
    std::string GetName() const;

    /// The sequence number of the next packet.
    std::uint16_t GetSequence() const { return sequence; }

    /// The RTP timestamp for a time of the viewer.
    std::uint32_t ToTimestamp(std::chrono::nanoseconds time, std::uint32_t clockRate) const;

    /// Writes the RTP header of a packet into HeaderSize bytes.
    /// number  its sequence number
    void WriteHeader(std::byte* out, Packet const& packet, std::uint8_t payloadType, std::uint16_t number,
                     std::uint32_t timestamp) const;

    /// Takes the sequence numbers of the next packets; returns the first.
    std::uint16_t TakeSequence(std::size_t packets);

    /// Counts packets as sent.
    /// octets  bytes of their payloads
    void Count(std::size_t packets, std::size_t octets);

    /// A sender report with the source's name.
    /// now        the time of the system's clock
    /// timestamp  the RTP timestamp of the same moment
    std::string MakeReport(std::chrono::system_clock::time_point now, std::uint32_t timestamp) const;

    /// The last packet of the stream: a report and BYE.
    std::string MakeGoodbye(std::chrono::system_clock::time_point now, std::uint32_t timestamp) const;

private:
    std::uint32_t source = 0;
    std::uint32_t firstTimestamp = 0;
    std::uint16_t sequence = 0;
    std::uint32_t packetCount = 0;
    std::uint32_t octetCount = 0;
};

/// Whether a datagram or frame is an RTCP packet, as far as its first header tells. Source: RFC 3550, 6.4.
bool IsRtcp(std::string_view bytes);

} // namespace zarn::host::video::rtp
