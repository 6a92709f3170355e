#include "host/web/living_connections.h"

#include "host/web/connection.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace zarn::host::web {

void LivingConnections::Add(Connection& connection) {
    std::lock_guard const lock(mutex);
    connections.insert(&connection);
}

void LivingConnections::Remove(Connection& connection) noexcept {
    std::lock_guard const lock(mutex);
    connections.erase(&connection);
}

std::vector<std::shared_ptr<Connection>> LivingConnections::GetAll() const {
    return Select([](auto const&) { return true; });
}

std::vector<std::shared_ptr<Connection>>
LivingConnections::GetOverdue(std::chrono::steady_clock::time_point now) const {
    return Select([now](Connection const& each) { return each.IsOverdue(now); });
}

template <class IsWanted>
std::vector<std::shared_ptr<Connection>> LivingConnections::Select(IsWanted isWanted) const {
    std::vector<std::shared_ptr<Connection>> wanted;
    std::lock_guard const lock(mutex);
    auto const count = std::ranges::count_if(connections, [&](auto const* each) { return isWanted(*each); });
    // Each reference goes straight into `wanted`, which outlives the lock: a connection's destructor takes it, too.
    wanted.reserve(static_cast<std::size_t>(count));
    for (auto* const each : connections) {
        if (wanted.size() == wanted.capacity()) break;
        if (!isWanted(*each)) continue;
        if (auto connection = each->weak_from_this().lock()) wanted.push_back(std::move(connection));
    }
    return wanted;
}

} // namespace zarn::host::web
