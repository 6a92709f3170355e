#include "host/video/rtsp/udp_outlet.h"

#include "host/video/rtsp/session.h"
#include "host/video/rtsp/worker.h"

#include <boost/asio/buffer.hpp>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

namespace zarn::host::video::rtsp {

UdpOutlet::UdpOutlet(Worker& worker, Session& session) : worker(worker), session(session), timer(worker.GetContext()) {}

void UdpOutlet::Flush() {
    if (!isPausing) SendBurst();
}

void UdpOutlet::SendControl(Track const& track, std::string packet) {
    boost::system::error_code ignored;
    worker.GetUdpPorts().GetRtcp().send_to(boost::asio::buffer(packet), track.rtcpPeer, 0, ignored);
}

/// Whether there is an access unit to send.
bool UdpOutlet::TakeNext() {
    if (transfer && !transfer->IsDone()) return true;
    if (transfer) {
        auto const track = std::exchange(transfer, std::nullopt)->GetTrack();
        session.OnSent(*track);
    }
    for (auto const& track : session.GetTracks()) {
        if (!track || track->queue.IsEmpty()) continue;
        transfer.emplace(track, Transfer::Framing::None);
        return true;
    }
    return false;
}

std::size_t UdpOutlet::CountWaiting() const {
    std::size_t bytes = 0;
    for (auto const& track : session.GetTracks()) bytes += track ? track->queue.GetBytes() : 0;
    return bytes;
}

void UdpOutlet::SendBurst() {
    for (auto left = GetBurst(CountWaiting()); TakeNext();) {
        if (left == 0) {
            timer.expires_after(Pause);
            timer.async_wait([weak = weak_from_this()](boost::system::error_code) {
                auto const self = weak.lock();
                if (!self) return;
                self->isPausing = false;
                self->SendBurst();
            });
            isPausing = true; // set last: if the wait cannot begin, the next unit must try again
            return;
        }
        if (!transfer->IsDone()) left -= SendSome(left);
    }
}

/// Sends what fits into one system call, `most` packets at most. Returns how many were sent or lost.
std::size_t UdpOutlet::SendSome(std::size_t most) {
    PacketParts parts;
    transfer->Gather(parts);
    auto const count = std::min(parts.GetCount(), most);
    auto peer = transfer->GetTrack()->rtpPeer;
    std::array<mmsghdr, PacketParts::MaximumPackets> messages{};
    for (std::size_t index = 0; index < count; ++index) {
        auto& header = messages[index].msg_hdr;
        header.msg_name = peer.data();
        header.msg_namelen = static_cast<socklen_t>(peer.size());
        header.msg_iov = parts.GetParts().subspan(2 * index, 2).data();
        header.msg_iovlen = 2;
    }
    auto const socket = worker.GetUdpPorts().GetRtp().native_handle();
    auto const sent = sendmmsg(socket, messages.data(), static_cast<unsigned>(count), MSG_DONTWAIT);
    // A packet that cannot be sent is lost, as on the network; the rest of a full buffer's worth waits for the next
    // burst.
    if (sent < 0 && errno == EAGAIN) return most;
    auto const done = sent > 0 ? static_cast<std::size_t>(sent) : std::size_t{1};
    transfer->AdvancePackets(done);
    return done;
}

} // namespace zarn::host::video::rtsp
