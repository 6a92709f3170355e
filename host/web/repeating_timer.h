#pragma once

#include <zarn/logging/limited_logger.h>

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/steady_timer.hpp>

#include <chrono>
#include <functional>

namespace zarn::host::web {

/// Calls a function at an interval. Logs an exception that it throws, and calls it again in time.
/// Thread: the executor's, which runs one handler at a time.
class RepeatingTimer {
public:
    /// executor  runs the calls; must have stopped running them when the timer is destroyed
    /// interval  between the end of one call and the next one
    /// what      for the log, when a call fails
    RepeatingTimer(boost::asio::any_io_executor const& executor, std::chrono::milliseconds interval, char const* what,
                   std::function<void()> function);

    RepeatingTimer(RepeatingTimer const&) = delete;
    RepeatingTimer& operator=(RepeatingTimer const&) = delete;

    /// Calls the function now and from now on.
    void Start();

    /// Ends the calls.
    void Stop();

private:
    void Call();
    void Arm();

    boost::asio::steady_timer timer;
    std::chrono::milliseconds const interval;
    char const* const what;
    std::function<void()> const function;
    bool isStopped = false;
    logging::LimitedLogger failures{"zarn.host.web"};
};

} // namespace zarn::host::web
