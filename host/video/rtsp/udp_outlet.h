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

/// Sends a session's packets over UDP, in bursts with pauses, so that a large picture or the backlog of a new viewer
/// does not overflow the viewer's receive buffer, which holds some 90 packets. Packets that the network refuses are
/// lost. Thread: the worker's.
class UdpOutlet final : public Outlet, public std::enable_shared_from_this<UdpOutlet> {
public:
    /// How many packets are sent at once: some 60 Mbit/s, and more the more wait, so that no stream is too fast.
    /// waiting  bytes
    static constexpr std::size_t GetBurst(std::size_t waiting) {
        constexpr std::size_t Least = 24;
        constexpr std::size_t BytesForOneMore = std::size_t{70} * 1024; // a backlog passes within fractions of a second
        return Least + waiting / BytesForOneMore;
    }

    /// The pause after that.
    static constexpr std::chrono::milliseconds Pause{4};

    /// Both must outlive it.
    UdpOutlet(Worker& worker, Session& session);

    void Flush() override;
    void SendControl(Track const& track, std::string packet) override;

private:
    bool TakeNext();
    std::size_t CountWaiting() const;
    void SendBurst();
    std::size_t SendSome(std::size_t most);

    Worker& worker;
    Session& session;
    boost::asio::steady_timer timer;
    bool isPausing = false;
    std::optional<Transfer> transfer;
};

} // namespace zarn::host::video::rtsp
