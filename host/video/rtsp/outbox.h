#pragma once

#include "host/video/rtsp/session.h"
#include "host/video/rtsp/transfer.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zarn::host::video::rtsp {

/// What leaves over a connection: responses and RTCP packets, which go first, and the access units of its sessions. An
/// access unit that has begun is finished before anything else. Thread: one at a time.
class Outbox {
public:
    enum class Result {
        Empty, ///< all has been sent
        Full,  ///< the socket takes no more now
        More,  ///< enough for one turn
        Failed ///< the connection has broken
    };

    /// The most bytes that are sent in one turn, so that others get theirs.
    static constexpr std::size_t Turn = std::size_t{256} * 1024;

    /// More bytes of responses and RTCP packets than this do not wait: what makes them has to stop.
    static constexpr std::size_t MaximumTexts = std::size_t{64} * 1024;

    /// Adds a response or an interleaved RTCP packet.
    void Add(std::string text);

    /// Whether more responses may be added.
    bool HasRoom() const { return textBytes < MaximumTexts; }

    /// Whether responses and RTCP packets have been sent.
    bool HasSentTexts() const { return texts.empty(); }

    /// Sends without waiting.
    /// socket    of the connection
    /// sessions  of which the interleaved ones are sent over it
    Result Send(int socket, std::vector<std::shared_ptr<Session>> const& sessions);

    /// Whether anything has been sent since the last call.
    bool TakeProgress();

private:
    bool TakeNext(std::vector<std::shared_ptr<Session>> const& sessions);
    std::optional<std::size_t> SendTransfer(int socket);
    std::optional<std::size_t> SendTexts(int socket);

    std::deque<std::string> texts;
    std::size_t textBytes = 0;
    std::size_t textOffset = 0; ///< of the first text, how much has been sent
    std::optional<Transfer> transfer;
    std::size_t next = 0; ///< whose turn it is among the sessions
    bool hasProgress = false;
};

} // namespace zarn::host::video::rtsp
