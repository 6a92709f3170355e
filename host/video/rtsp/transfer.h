#pragma once

#include "host/video/rtsp/track.h"

#include <sys/uio.h>

#include <array>
#include <cstddef>
#include <memory>
#include <span>

namespace zarn::host::video::rtsp {

/// The parts of some packets, for one system call. Headers are written into it; everything else stays where it is.
class PacketParts {
public:
    /// The most packets that fit.
    static constexpr std::size_t MaximumPackets = 64;

    /// Two parts for each packet: headers and prefix, then the body.
    std::span<iovec> GetParts() { return std::span(parts).first(count); }

    /// How many packets there are.
    std::size_t GetCount() const { return count / 2; }

    bool IsFull() const { return count == parts.size(); }

    /// Adds a packet.
    /// frame   bytes in front of the RTP header
    /// number  its sequence number
    /// skip    how many bytes of the beginning are left out
    void Add(Track const& track, rtp::Packet const& packet, std::uint8_t payloadType, std::uint16_t number,
             std::uint32_t timestamp, std::span<std::byte const> frame, std::size_t skip);

private:
    static constexpr std::size_t HeadSize =
        4 + rtp::Sender::HeaderSize + std::tuple_size_v<decltype(rtp::Packet::prefix)>;

    std::array<iovec, 2 * MaximumPackets> parts{};
    std::array<std::array<std::byte, HeadSize>, MaximumPackets> heads;
    std::size_t count = 0;
};

/// An access unit on its way to a viewer: remembers how much of it has been sent. Thread: one at a time.
class Transfer {
public:
    /// What stands in front of each packet.
    enum class Framing {
        Interleaved, ///< on a connection: mark, channel and length. Source: RFC 2326, 10.12
        None,        ///< in a datagram
    };

    /// Takes the first access unit from the track's queue, and its sequence numbers.
    Transfer(std::shared_ptr<Track> track, Framing framing);

    /// Collects what comes next, as much as fits.
    void Gather(PacketParts& parts) const;

    /// Counts bytes as sent.
    void Advance(std::size_t bytes);

    /// Counts whole packets as sent.
    void AdvancePackets(std::size_t count);

    /// Whether all has been sent.
    bool IsDone() const { return !item.unit->packets || index == item.unit->packets->list.size(); }

    /// The track whose access unit this is.
    std::shared_ptr<Track> const& GetTrack() const { return track; }

private:
    void CountWhenDone();
    std::size_t GetSize(rtp::Packet const& packet) const;

    std::shared_ptr<Track> track;
    Framing framing;
    ViewerQueue::Item item;
    std::uint32_t timestamp = 0;
    std::uint16_t firstNumber = 0;
    std::size_t index = 0;  ///< of the packet that is being sent
    std::size_t offset = 0; ///< in that packet
};

} // namespace zarn::host::video::rtsp
