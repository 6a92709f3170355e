#pragma once

#include <zarn/logging/limited_logger.h>
#include <zarn/onvif/events/handler.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace zarn::onvif::events {

/// A handler, and who is in it. Thread: any.
class Registration {
public:
    explicit Registration(Handler eventHandler);

    /// Calls the handler, unless it is closed. What it throws is logged.
    void Call(std::shared_ptr<zarn::meta::data::Event> const& event) noexcept;

    /// Ends the registration: no call begins any more. Waits for the calls on other threads, then destroys the handler,
    /// or leaves that to the call on this thread in which Close is called. Called once.
    void Close() noexcept;

private:
    class Visit;

    logging::LimitedLogger failures{"zarn.onvif.events"};
    std::mutex mutex; ///< guards the members below
    std::condition_variable left;
    /// Called without the lock, but replaced only when nobody is in it.
    Handler handler;
    /// The threads that are in the handler, once for each call.
    std::vector<std::thread::id> callers;
    bool closed = false;
    /// The last call destroys the handler.
    bool orphaned = false;
};

} // namespace zarn::onvif::events
