#pragma once

#include <atomic>
#include <cstdint>

namespace zarn::service::onvif {

/// A mutex that threads get in the order in which they asked for it, so that a thread that locks it again and again
/// shuts no other one out. Between several threads, each hand-over costs a change of threads. Meets BasicLockable.
class FairMutex {
public:
    /// Waits for the threads that asked before. Thread: any.
    void lock(); // NOLINT(readability-identifier-naming)

    /// Hands over to the thread that has waited longest. Thread: the one that has locked it.
    void unlock(); // NOLINT(readability-identifier-naming)

private:
    // Both may wrap around: they differ by the number of threads only.
    std::atomic<std::uint32_t> asked = 0;  ///< the turn of the next thread to ask
    std::atomic<std::uint32_t> served = 0; ///< the turn that may hold the mutex
};

} // namespace zarn::service::onvif
