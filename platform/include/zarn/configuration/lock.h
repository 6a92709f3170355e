#pragma once

#include <memory>
#include <mutex>

namespace zarn::configuration {

/// Holds the lock of a whole configuration tree until it is destroyed, see Node::GetLock.
/// Move-only; belongs to the thread that took it.
class Lock {
public:
    /// Takes the lock, waiting for it when another thread has it.
    explicit Lock(std::shared_ptr<std::recursive_mutex> treeMutex);

    Lock(Lock&&) noexcept = default;
    Lock& operator=(Lock&&) = delete;
    ~Lock() = default;

private:
    /// Keeps the mutex alive when the tree goes first; declared first, so that it outlives the guard.
    std::shared_ptr<std::recursive_mutex> mutex;
    std::unique_lock<std::recursive_mutex> guard;
};

} // namespace zarn::configuration
