#include "host/video/rtsp/outbox.h"

#include <sys/socket.h>

#include <cerrno>
#include <span>
#include <utility>

namespace zarn::host::video::rtsp {
namespace {

/// Bytes that the socket took; none when it failed, see errno.
std::optional<std::size_t> SendParts(int socket, std::span<iovec> parts) {
    msghdr message{};
    message.msg_iov = parts.data();
    message.msg_iovlen = parts.size();
    auto const sent = sendmsg(socket, &message, MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent < 0) return std::nullopt;
    return static_cast<std::size_t>(sent);
}

} // namespace

void Outbox::Add(std::string text) {
    auto const size = text.size();
    texts.push_back(std::move(text));
    textBytes += size;
}

Outbox::Result Outbox::Send(int socket, std::vector<std::shared_ptr<Session>> const& sessions) {
    for (std::size_t total = 0; total < Turn;) {
        bool const isMidway = transfer && !transfer->IsDone();
        if (!isMidway && texts.empty() && !TakeNext(sessions)) return Result::Empty;
        auto const sent = isMidway || texts.empty() ? SendTransfer(socket) : SendTexts(socket);
        if (!sent && errno == EINTR) continue;
        if (!sent) return errno == EAGAIN || errno == EWOULDBLOCK ? Result::Full : Result::Failed;
        total += *sent;
        hasProgress = true;
    }
    return Result::More;
}

bool Outbox::TakeProgress() { return std::exchange(hasProgress, false); }

/// Begins with the next access unit or text; false when nothing waits.
bool Outbox::TakeNext(std::vector<std::shared_ptr<Session>> const& sessions) {
    if (transfer) {
        auto const track = std::exchange(transfer, std::nullopt)->GetTrack();
        for (auto const& session : sessions) session->OnSent(*track);
    }
    for (std::size_t count = 0; count < sessions.size(); ++count) {
        auto const& session = *sessions[next++ % sessions.size()];
        if (!session.IsInterleaved()) continue;
        for (auto const& track : session.GetTracks()) {
            while (track && !track->queue.IsEmpty()) {
                transfer.emplace(track, Transfer::Framing::Interleaved);
                if (!transfer->IsDone()) return true;
            }
        }
    }
    return !texts.empty();
}

std::optional<std::size_t> Outbox::SendTransfer(int socket) {
    if (!transfer || transfer->IsDone()) return 0;
    PacketParts parts;
    transfer->Gather(parts);
    auto const sent = SendParts(socket, parts.GetParts());
    if (sent) transfer->Advance(*sent);
    return sent;
}

std::optional<std::size_t> Outbox::SendTexts(int socket) {
    auto& text = texts.front();
    iovec part{text.data() + textOffset, text.size() - textOffset};
    auto const sent = SendParts(socket, {&part, 1});
    if (!sent) return sent;
    textBytes -= *sent;
    textOffset += *sent;
    if (textOffset < text.size()) return sent;
    texts.pop_front();
    textOffset = 0;
    return sent;
}

} // namespace zarn::host::video::rtsp
