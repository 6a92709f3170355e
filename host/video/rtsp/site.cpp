#include "host/video/rtsp/site.h"

#include "host/video/log.h"
#include "host/video/rtsp/worker.h"

#include <boost/algorithm/hex.hpp>
#include <openssl/rand.h>

#include <array>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace zarn::host::video::rtsp {

Site::Site(std::vector<Worker*> workers, std::shared_ptr<FailedLogins> failedLogins)
    : workers(std::move(workers)), failedLogins(std::move(failedLogins)), refusals(Log().GetName()) {}

std::shared_ptr<Authentication> Site::GetAuthentication() const {
    std::scoped_lock const lock(mutex);
    return authentication;
}

void Site::SetAuthentication(bool authenticate, std::string const& ha1) {
    std::scoped_lock const lock(mutex);
    if (!authenticate) {
        authentication.reset();
    } else if (!authentication || authentication->GetHa1() != ha1) {
        authentication = std::make_shared<Authentication>(ha1);
    }
}

void Site::SetLimits(ConnectionLimits const& value) {
    std::scoped_lock const lock(mutex);
    limits = value;
}

ConnectionLimits Site::GetLimits() const {
    std::scoped_lock const lock(mutex);
    return limits;
}

ConnectionCount::Slot Site::AddConnection(boost::asio::ip::address const& peer) {
    auto slot = connections.Add(peer, GetLimits());
    if (!slot) {
        refusals.Log(logging::Level::Warning, "Refused an RTSP connection from %0%: too many are open",
                     peer.to_string());
    }
    return slot;
}

ConnectionCount::Slot Site::AddSession(boost::asio::ip::address const& peer) {
    auto const present = GetLimits();
    return sessions.Add(peer, {2 * present.connections, 2 * present.connectionsPerAddress});
}

std::string Site::MakeSessionId(Worker const& worker) {
    std::array<unsigned char, 12> bytes{};
    if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1)
        throw std::runtime_error("the system gives no random bytes for an RTSP session");
    std::string id;
    boost::algorithm::hex_lower(bytes.begin(), bytes.end(), std::back_inserter(id));
    return id + static_cast<char>('A' + worker.GetIndex());
}

Worker* Site::FindWorker(std::string_view sessionId) const {
    for (auto* const worker : workers) {
        if (sessionId.ends_with(static_cast<char>('A' + worker->GetIndex()))) return worker;
    }
    return nullptr;
}

} // namespace zarn::host::video::rtsp
