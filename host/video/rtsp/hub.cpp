#include "host/video/rtsp/hub.h"

#include "host/video/rtsp/session.h"

#include <boost/asio/post.hpp>

#include <algorithm>

namespace zarn::host::video::rtsp {

Hub::Hub(boost::asio::io_context& io, std::shared_ptr<Stream> stream, std::size_t track)
    : io(io), stream(std::move(stream)), track(track) {}

Hub::~Hub() = default;

void Hub::OnUnit(AccessUnitPtr const& unit) {
    std::scoped_lock const lock(mutex);
    if (viewerCount == 0) return;
    if (waitingBytes > MaximumWaiting) {
        std::erase_if(waiting, [](AccessUnitPtr const& each) { return each != nullptr; });
        waitingBytes = 0;
        hasLost = true;
    }
    waiting.push_back(unit);
    waitingBytes += unit->size;
    Wake();
}

void Hub::OnEnd() {
    std::scoped_lock const lock(mutex);
    waiting.push_back(nullptr);
    Wake();
}

/// With the mutex locked.
void Hub::Wake() {
    if (isWoken) return;
    boost::asio::post(io, [self = shared_from_this()] { self->Drain(); });
    isWoken = true; // not before: without memory for the post, the next unit tries again
}

void Hub::Drain() {
    std::vector<AccessUnitPtr> units;
    bool isAfterLoss = false;
    {
        std::scoped_lock const lock(mutex);
        units.swap(waiting);
        waitingBytes = 0;
        isWoken = false;
        isAfterLoss = std::exchange(hasLost, false);
    }
    for (auto begin = units.begin(); begin != units.end();) {
        auto const end = std::find(begin, units.end(), nullptr);
        for (auto* const viewer : viewers) viewer->Deliver(track, {begin, end}, isAfterLoss);
        begin = end;
        if (begin == units.end()) break;
        End();
        ++begin;
    }
}

void Hub::End() {
    // What comes next is not for them.
    for (auto* const session : std::exchange(sessions, {})) session->EndOfStream();
}

void Hub::Add(Session& session) {
    if (std::ranges::find(sessions, &session) == sessions.end()) sessions.push_back(&session);
}

std::optional<Stream::Recent> Hub::Join(Session& session) {
    viewers.push_back(&session);
    {
        std::scoped_lock const lock(mutex);
        ++viewerCount;
    }
    // Only now: what is published between the two comes twice, and is skipped; the other way round it would be lost.
    return stream->GetRecent();
}

void Hub::Leave(Session& session) {
    if (std::erase(viewers, &session) == 0) return;
    std::scoped_lock const lock(mutex);
    --viewerCount;
}

void Hub::Remove(Session& session) {
    Leave(session);
    std::erase(sessions, &session);
}

} // namespace zarn::host::video::rtsp
