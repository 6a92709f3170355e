#include "host/video/rtsp/worker.h"

#include "host/video/log.h"
#include "host/video/rtsp/connection.h"
#include "host/video/rtsp/session.h"

#include <exception>
#include <utility>

namespace zarn::host::video::rtsp {

Worker::Worker(std::size_t index) : index(index), failures(Log().GetName()) {}

Worker::~Worker() {
    Stop();
    for (auto const& connection : connections) connection->Close();
    connections.clear();
    // Sessions leave the map when they are destroyed.
    std::exchange(sessions, {}).clear();
}

void Worker::Start() {
    AwaitSweep();
    thread = std::thread([this] { Run(); });
}

void Worker::Stop() {
    io.stop();
    if (thread.joinable()) thread.join();
}

void Worker::Run() {
    for (;;) {
        try {
            io.run();
            return;
        } catch (std::exception const& error) {
            failures.Log(logging::Level::Error, "An RTSP connection failed: %0%", error.what());
        }
    }
}

UdpPorts& Worker::GetUdpPorts() {
    if (!udpPorts) udpPorts.emplace(io);
    return *udpPorts;
}

void Worker::Add(std::shared_ptr<Session> const& session) { sessions.emplace(session->GetId(), session); }

void Worker::Remove(Session const& session) {
    auto const found = sessions.find(session.GetId());
    if (found != sessions.end()) sessions.extract(found); // destroyed when the map is whole again
}

std::shared_ptr<Session> Worker::FindSession(std::string_view id) const {
    auto const found = sessions.find(id);
    return found == sessions.end() ? nullptr : found->second;
}

void Worker::AwaitSweep() {
    timer.expires_after(SweepInterval);
    timer.async_wait([this](boost::system::error_code error) {
        if (error) return;
        AwaitSweep();
        Sweep();
    });
}

void Worker::Sweep() {
    auto const now = Session::Clock::now();
    std::erase_if(connections, [now](std::shared_ptr<Connection> const& connection) {
        connection->Sweep(now);
        return connection->IsClosed();
    });
    std::vector<std::shared_ptr<Session>> present;
    present.reserve(sessions.size());
    for (auto const& [id, session] : sessions) present.push_back(session);
    for (auto const& session : present) session->Sweep(now);
}

} // namespace zarn::host::video::rtsp
