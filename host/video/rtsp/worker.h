#pragma once

#include "host/video/rtsp/udp_ports.h"

#include <zarn/logging/limited_logger.h>

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace zarn::host::video::rtsp {

class Connection;
class Session;

/// A thread of the RTSP server, with an I/O context of its own. A connection or session belongs to one worker, whose
/// thread alone touches it, so that none of them needs a lock. The thread never waits for anything but events.
class Worker {
public:
    /// How often connections and sessions are checked.
    static constexpr std::chrono::seconds SweepInterval{2};

    /// index  its place among the server's workers
    explicit Worker(std::size_t index);

    /// Stop().
    ~Worker();

    Worker(Worker const&) = delete;
    Worker& operator=(Worker const&) = delete;

    /// Starts the thread; to be called once. Throws std::system_error when there is none.
    void Start();

    /// Ends the thread; what waits is dropped. Stopping twice is harmless. Thread: any but the worker's.
    void Stop();

    /// Its place among the server's workers.
    std::size_t GetIndex() const { return index; }

    /// What its thread runs. Thread: any may post.
    boost::asio::io_context& GetContext() { return io; }

    /// Its UDP ports, bound at the first call. Throws std::runtime_error when the system gives none. Thread: its own.
    UdpPorts& GetUdpPorts();

    /// Keeps a connection until it is closed, and checks it regularly. Thread: its own.
    void Add(std::shared_ptr<Connection> connection) { connections.push_back(std::move(connection)); }

    /// Keeps a session until it ends, and checks it regularly. Thread: its own.
    void Add(std::shared_ptr<Session> const& session);

    /// Forgets a session that has ended. Thread: its own.
    void Remove(Session const& session);

    /// Null when there is no such session. Thread: its own.
    std::shared_ptr<Session> FindSession(std::string_view id) const;

private:
    void Run();
    void AwaitSweep();
    void Sweep();

    std::size_t const index;
    logging::LimitedLogger failures; ///< of handlers, which a client may be able to repeat
    boost::asio::io_context io{1};
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work{io.get_executor()};
    boost::asio::steady_timer timer{io};
    std::optional<UdpPorts> udpPorts;
    std::vector<std::shared_ptr<Connection>> connections;
    std::map<std::string, std::shared_ptr<Session>, std::less<>> sessions;
    std::thread thread;
};

} // namespace zarn::host::video::rtsp
