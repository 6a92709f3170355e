#include "host/web/admission.h"

#include <map>
#include <mutex>

namespace zarn::host::web {

struct Admission::Counts {
    std::mutex mutex; ///< guards the members below
    std::size_t connections = 0;
    std::size_t exchanges = 0;
    std::map<boost::asio::ip::address, std::size_t> perAddress; ///< no entry counts 0
};

Admission::Admission() : counts(std::make_shared<Counts>()) {}

Admission::Slot Admission::Connect(boost::asio::ip::address const& peer, Limits const& limits) {
    std::lock_guard const lock(counts->mutex);
    if (counts->connections >= limits.connections) return {};
    auto const entry = counts->perAddress.try_emplace(peer, 0).first;
    if (entry->second >= limits.connectionsPerAddress) {
        if (entry->second == 0) counts->perAddress.erase(entry);
        return {};
    }
    ++entry->second;
    ++counts->connections;
    return {this, [counts = counts, entry](void const*) {
                std::lock_guard const release(counts->mutex);
                --counts->connections;
                if (--entry->second == 0) counts->perAddress.erase(entry);
            }};
}

Admission::Slot Admission::BeginExchange(Limits const& limits) {
    std::lock_guard const lock(counts->mutex);
    if (counts->exchanges >= limits.exchanges) return {};
    ++counts->exchanges;
    return {this, [counts = counts](void const*) {
                std::lock_guard const release(counts->mutex);
                --counts->exchanges;
            }};
}

std::size_t Admission::GetConnections() const {
    std::lock_guard const lock(counts->mutex);
    return counts->connections;
}

std::size_t Admission::GetExchanges() const {
    std::lock_guard const lock(counts->mutex);
    return counts->exchanges;
}

} // namespace zarn::host::web
