#include "host/access/connection_count.h"

#include <boost/asio/ip/address.hpp>

#include <map>
#include <mutex>

namespace zarn::host {

struct ConnectionCount::Counts {
    std::mutex mutex; ///< guards the members below
    std::size_t all = 0;
    std::map<boost::asio::ip::address, std::size_t> perAddress; ///< no entry counts 0
};

ConnectionCount::ConnectionCount() : counts(std::make_shared<Counts>()) {}

ConnectionCount::Slot ConnectionCount::Add(boost::asio::ip::address const& peer, ConnectionLimits const& limits) {
    std::lock_guard const lock(counts->mutex);
    if (counts->all >= limits.connections) return {};
    auto const entry = counts->perAddress.try_emplace(peer, 0).first;
    if (entry->second >= limits.connectionsPerAddress) {
        if (entry->second == 0) counts->perAddress.erase(entry);
        return {};
    }
    ++entry->second;
    ++counts->all;
    return {this, [counts = counts, entry](void const*) {
                std::lock_guard const release(counts->mutex);
                --counts->all;
                if (--entry->second == 0) counts->perAddress.erase(entry);
            }};
}

std::size_t ConnectionCount::Get() const {
    std::lock_guard const lock(counts->mutex);
    return counts->all;
}

} // namespace zarn::host
