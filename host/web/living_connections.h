#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <unordered_set>
#include <vector>

namespace zarn::host::web {

class Connection;

/// A server's live connections. Thread: any.
class LivingConnections {
public:
    /// Adds a connection, which has to remove itself in its destructor.
    void Add(Connection& connection);
    void Remove(Connection& connection) noexcept;

    /// All of them, or those that are overdue.
    std::vector<std::shared_ptr<Connection>> GetAll() const;
    std::vector<std::shared_ptr<Connection>> GetOverdue(std::chrono::steady_clock::time_point now) const;

private:
    template <class IsWanted>
    std::vector<std::shared_ptr<Connection>> Select(IsWanted isWanted) const;

    mutable std::mutex mutex; ///< guards the list; while it is held, no connection in it is destroyed
    std::unordered_set<Connection*> connections;
};

} // namespace zarn::host::web
