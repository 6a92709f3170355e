#include "host/web/repeating_timer.h"

#include <exception>
#include <utility>

namespace zarn::host::web {

RepeatingTimer::RepeatingTimer(boost::asio::any_io_executor const& executor, std::chrono::milliseconds interval,
                               char const* what, std::function<void()> function)
    : timer(executor), interval(interval), what(what), function(std::move(function)) {}

void RepeatingTimer::Start() {
    Call();
    Arm();
}

void RepeatingTimer::Stop() {
    isStopped = true;
    timer.cancel();
}

void RepeatingTimer::Call() {
    try {
        function();
    } catch (std::exception const& error) {
        failures.Log(logging::Level::Error, "%0%: %1%", what, error.what());
    }
}

void RepeatingTimer::Arm() {
    if (isStopped) return;
    timer.expires_after(interval);
    timer.async_wait([this](boost::system::error_code cancelled) {
        if (!cancelled) Start();
    });
}

} // namespace zarn::host::web
