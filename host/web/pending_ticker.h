#pragma once

#include "host/web/reply.h"

#include <zarn/logging/limited_logger.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace zarn::host::web {

/// Asks all pending responses of the web server whether they are complete. A pending response has no wake-up, so that
/// it has to be asked repeatedly: a young one often, since most requests take well under a millisecond, an old one
/// rarely, since it waits for an event. One timer serves them all. Thread: any.
class PendingTicker {
public:
    /// Called once with the reply, on a thread of the I/O context or within Watch.
    using Done = std::function<void(Reply)>;

    /// io  runs the timer; must outlive the ticker, and must not run while the ticker is destroyed.
    /// What is still pending then is dropped without a call.
    explicit PendingTicker(boost::asio::io_context& io);

    PendingTicker(PendingTicker const&) = delete;
    PendingTicker& operator=(PendingTicker const&) = delete;

    /// Asks `pending` until it is complete, then calls `done`. A response that throws becomes a 500, and the exception
    /// is logged; one that is not complete within its own timeout becomes a 504.
    void Watch(std::shared_ptr<zarn::web::response::Pending const> pending, Done done);

private:
    using Clock = std::chrono::steady_clock;

    struct Entry {
        std::shared_ptr<zarn::web::response::Pending const> pending;
        Done done;
        Clock::time_point begun;
        Clock::time_point due;
    };

    std::optional<Reply> Ask(Entry const& entry, Clock::time_point now);
    bool AskAndFinish(Entry const& entry, Clock::time_point now);
    bool AskIfDue(Entry& entry, Clock::time_point now);
    void Tick();
    void AskAll(Clock::time_point now);
    void AskWaiting(Clock::time_point now);
    void ArmLocked(Clock::time_point when);

    logging::LimitedLogger throwing{"zarn.host.web"};
    logging::LimitedLogger failing{"zarn.host.web"};
    boost::asio::strand<boost::asio::io_context::executor_type> strand;

    std::shared_ptr<bool const> const alive = std::make_shared<bool>(true); ///< observed by the handler of the timer

    std::mutex mutex; ///< guards the members up to the next blank line
    boost::asio::steady_timer timer;
    std::optional<Clock::time_point> armed; ///< when the timer fires; none: it does not
    std::vector<Entry> arrived;

    // Only touched on the strand.
    std::vector<Entry> young;
    std::vector<Entry> waiting;
    Clock::time_point nextRound; ///< over the waiting ones
    int hastyRounds = 0;
};

} // namespace zarn::host::web
