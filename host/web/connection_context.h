#pragma once

#include "host/web/dispatcher.h"
#include "host/web/limits.h"

#include <atomic>
#include <chrono>
#include <mutex>

namespace zarn::host::web {

/// What all connections of a server share. Thread: any.
class ConnectionContext {
public:
    /// dispatcher       answers the requests; must outlive the context
    /// lastRequestTime  how long a connection that is about to end waits for a request that is already on its way
    ConnectionContext(Dispatcher& dispatcher, Limits const& limits, std::chrono::milliseconds lastRequestTime)
        : dispatcher(dispatcher), lastRequestTime(lastRequestTime), limits(limits) {}

    Dispatcher& GetDispatcher() const noexcept { return dispatcher; }

    std::chrono::milliseconds GetLastRequestTime() const noexcept { return lastRequestTime; }

    Limits GetLimits() const {
        std::lock_guard const lock(mutex);
        return limits;
    }

    void SetLimits(Limits const& value) {
        std::lock_guard const lock(mutex);
        limits = value;
    }

    /// From now on no connection is kept for another request.
    void SetFinishing() noexcept { finishing = true; }

    bool IsFinishing() const noexcept { return finishing; }

private:
    Dispatcher& dispatcher;
    std::chrono::milliseconds const lastRequestTime;
    std::atomic<bool> finishing = false;
    mutable std::mutex mutex; ///< guards limits
    Limits limits;
};

} // namespace zarn::host::web
