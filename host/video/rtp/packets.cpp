#include "host/video/rtp/packets.h"

#include <utility>

namespace zarn::host::video::rtp {

std::shared_ptr<Packets const> MakePackets(std::shared_ptr<MediaFormat const> format,
                                           std::vector<std::string> payloads) {
    auto const memory = std::make_shared<std::vector<std::string> const>(std::move(payloads));
    auto packets = std::make_shared<Packets>();
    packets->format = std::move(format);
    packets->memory = memory;
    for (auto const& payload : *memory) {
        Packet packet;
        packet.body = reinterpret_cast<std::byte const*>(payload.data());
        packet.bodySize = static_cast<std::uint32_t>(payload.size());
        packets->bytes += payload.size();
        packets->list.push_back(packet);
    }
    if (!packets->list.empty()) packets->list.back().marker = true;
    return packets;
}

} // namespace zarn::host::video::rtp
