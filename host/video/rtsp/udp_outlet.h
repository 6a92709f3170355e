#pragma once

#include "host/video/rtsp/outlet.h"
#include "host/video/rtsp/transfer.h"

#include <boost/asio/steady_timer.hpp>

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>

namespace zarn::host::video::rtsp {

class Session;
class Worker;

/// Sends a session's packets over UDP, at most so many at a time, so that a large picture or the backlog of a new
/// viewer does not overflow the viewer's receive buffer. Packets that the network refuses are lost.
/// Thread: the worker's.
class UdpOutlet final : public Outlet, public std::enable_shared_from_this<UdpOutlet> {
public:
    /// The most packets that are sent at once.
    static constexpr std::size_t Burst = PacketParts::MaximumPackets;

    /// The pause after that; together this is some 180 Mbit/s.
    static constexpr std::chrono::milliseconds Pause{4};

    /// Both must outlive it.
    UdpOutlet(Worker& worker, Session& session);

    void Flush() override;
    void SendControl(Track const& track, std::string packet) override;

private:
    bool TakeNext();
    void SendBurst();
    std::size_t SendSome(std::size_t most);

    Worker& worker;
    Session& session;
    boost::asio::steady_timer timer;
    bool isPausing = false;
    std::optional<Transfer> transfer;
};

} // namespace zarn::host::video::rtsp
