#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <functional>

namespace zarn::test {

/// Resources held by a process.
struct ResourceUse {
    std::size_t memory = 0; ///< resident, in bytes
    std::size_t threads = 0;
    std::size_t descriptors = 0;
};

/// Resources of a process of the same user, as the kernel reports them. Throws std::runtime_error when it does not
/// exist.
ResourceUse ReadResourceUse(pid_t process);

/// Polls until the use satisfies `isWanted` or `limit` expires. Returns the last reading.
ResourceUse AwaitResourceUse(pid_t process, std::function<bool(ResourceUse const&)> const& isWanted,
                             std::chrono::milliseconds limit);

} // namespace zarn::test
