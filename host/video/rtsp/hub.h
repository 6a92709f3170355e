#pragma once

#include "host/video/stream.h"

#include <boost/asio/io_context.hpp>

#include <cstddef>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace zarn::host::video::rtsp {

class Session;

/// Brings what a stream publishes to the viewers of one worker: the publishing thread only appends and wakes the
/// worker, which passes it on to each viewer. When the worker cannot follow, its viewers skip pictures.
/// Thread: the worker's, but for the functions of Subscriber.
class Hub final : public Stream::Subscriber, public std::enable_shared_from_this<Hub> {
public:
    /// What may wait for the worker, in bytes.
    static constexpr std::size_t MaximumWaiting = std::size_t{16} * 1024 * 1024;

    /// io      run by the worker; must outlive the hub
    /// stream  what is viewed
    /// track   its place among the channel's tracks
    Hub(boost::asio::io_context& io, std::shared_ptr<Stream> stream, std::size_t track);
    ~Hub() override;

    /// The stream that is viewed.
    Stream& GetStream() const { return *stream; }

    void OnUnit(AccessUnitPtr const& unit) override;
    void OnEnd() override;

    /// Counts a session as one that the end of the stream concerns, playing or not.
    void Add(Session& session);

    /// The session gets what is published from now on. Returns what it begins with.
    std::optional<Stream::Recent> Join(Session& session);

    /// The session gets nothing more.
    void Leave(Session& session);

    /// Undoes Add() and Join().
    void Remove(Session& session);

private:
    void Wake();
    void Drain();
    void End();

    boost::asio::io_context& io;
    std::shared_ptr<Stream> const stream;
    std::size_t const track;

    std::mutex mutex;                   ///< guards the members up to the next blank line
    std::vector<AccessUnitPtr> waiting; ///< null: the end of the stream
    std::size_t waitingBytes = 0;
    bool isWoken = false;
    bool hasLost = false;
    std::size_t viewerCount = 0;

    std::vector<Session*> sessions;
    std::vector<Session*> viewers;
};

} // namespace zarn::host::video::rtsp
