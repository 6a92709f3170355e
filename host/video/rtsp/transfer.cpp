#include "host/video/rtsp/transfer.h"

#include <algorithm>
#include <utility>

namespace zarn::host::video::rtsp {
namespace {

constexpr std::size_t FrameSize = 4;
constexpr std::byte FrameMark{'$'};

std::array<std::byte, FrameSize> MakeFrame(Track const& track, rtp::Packet const& packet) {
    auto const size = rtp::Sender::HeaderSize + packet.GetSize();
    return {FrameMark, static_cast<std::byte>(track.channel), static_cast<std::byte>(size >> 8),
            static_cast<std::byte>(size & 0xFF)};
}

} // namespace

void PacketParts::Add(Track const& track, rtp::Packet const& packet, std::uint8_t payloadType, std::uint16_t number,
                      std::uint32_t timestamp, std::span<std::byte const> frame, std::size_t skip) {
    auto& head = heads[count / 2];
    auto* const header = std::ranges::copy(frame, head.data()).out;
    track.sender.WriteHeader(header, packet, payloadType, number, timestamp);
    auto* const prefix = header + rtp::Sender::HeaderSize;
    std::copy_n(packet.prefix.data(), packet.prefixSize, prefix);
    auto const headSize = static_cast<std::size_t>(prefix - head.data()) + packet.prefixSize;
    auto const headSkip = std::min(skip, headSize);
    parts[count++] = {head.data() + headSkip, headSize - headSkip};
    // The system reads through a pointer that could be written through.
    auto* const body = const_cast<std::byte*>(packet.body) + (skip - headSkip);
    parts[count++] = {body, packet.bodySize - (skip - headSkip)};
}

Transfer::Transfer(std::shared_ptr<Track> from, Framing framing)
    : track(std::move(from)), framing(framing), item(track->queue.GetFirst()) {
    track->queue.RemoveFirst();
    if (!item.unit->packets) return;
    track->clockRate = item.unit->packets->format->clockRate;
    timestamp = track->sender.ToTimestamp(item.time, track->clockRate);
    firstNumber = track->sender.TakeSequence(item.unit->packets->list.size());
    track->isSending = !IsDone();
}

void Transfer::Gather(PacketParts& parts) const {
    if (!item.unit->packets) return;
    auto const& packets = *item.unit->packets;
    for (auto next = index; next < packets.list.size() && !parts.IsFull(); ++next) {
        auto const frame = MakeFrame(*track, packets.list[next]);
        auto const used =
            framing == Framing::Interleaved ? std::span<std::byte const>(frame) : std::span<std::byte const>();
        parts.Add(*track, packets.list[next], packets.format->payloadType,
                  static_cast<std::uint16_t>(firstNumber + next), timestamp, used, next == index ? offset : 0);
    }
}

void Transfer::Advance(std::size_t bytes) {
    offset += bytes;
    auto const& packets = *item.unit->packets;
    while (!IsDone() && offset >= GetSize(packets.list[index])) offset -= GetSize(packets.list[index++]);
    CountWhenDone();
}

void Transfer::AdvancePackets(std::size_t count) {
    index += count;
    CountWhenDone();
}

void Transfer::CountWhenDone() {
    if (!IsDone()) return;
    track->sender.Count(item.unit->packets->list.size(), item.unit->packets->bytes);
    track->isSending = false;
}

std::size_t Transfer::GetSize(rtp::Packet const& packet) const {
    return (framing == Framing::Interleaved ? FrameSize : 0) + rtp::Sender::HeaderSize + packet.GetSize();
}

} // namespace zarn::host::video::rtsp
