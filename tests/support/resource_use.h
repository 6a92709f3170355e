#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <functional>

namespace zarn::test {

/// What a process holds.
struct ResourceUse {
    std::size_t memory = 0; ///< resident, in bytes
    std::size_t threads = 0;
    std::size_t descriptors = 0;
};

/// Of a process of the same user, as the system counts it. Throws std::runtime_error when there is no such process.
ResourceUse ReadResourceUse(pid_t process);

/// Looks until what a process holds is as wanted, or `limit` is over, and returns what was seen last.
ResourceUse AwaitResourceUse(pid_t process, std::function<bool(ResourceUse const&)> const& isWanted,
                             std::chrono::milliseconds limit);

} // namespace zarn::test
