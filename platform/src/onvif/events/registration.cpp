#include "onvif/events/registration.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace zarn::onvif::events {

/// One call of the handler.
class Registration::Visit {
public:
    explicit Visit(Registration& visited) : registration(visited) {
        std::scoped_lock const lock(registration.mutex);
        if (registration.closed) return;
        registration.callers.push_back(std::this_thread::get_id());
        admitted = true;
    }

    ~Visit() {
        if (!admitted) return;
        Handler ended; // destroyed without the lock
        std::scoped_lock const lock(registration.mutex);
        auto& callers = registration.callers;
        callers.erase(std::find(callers.begin(), callers.end(), std::this_thread::get_id()));
        if (registration.orphaned && callers.empty()) ended.swap(registration.handler);
        if (registration.closed) registration.left.notify_all();
    }

    Visit(Visit const&) = delete;
    Visit& operator=(Visit const&) = delete;

    bool IsAdmitted() const noexcept { return admitted; }

private:
    Registration& registration;
    bool admitted = false;
};

Registration::Registration(Handler eventHandler) : handler(std::move(eventHandler)) {}

void Registration::Call(std::shared_ptr<zarn::meta::data::Event> const& event) noexcept {
    try {
        Visit const visit(*this);
        if (visit.IsAdmitted()) handler(event);
    } catch (std::exception const& error) {
        failures.Log(logging::Level::Error, "An event handler threw: %0%", error.what());
    } catch (...) {
        failures.Log(logging::Level::Error, "An event handler threw: an exception of unknown type");
    }
}

void Registration::Close() noexcept {
    Handler ended;
    std::unique_lock lock(mutex);
    closed = true;
    left.wait(lock, [this, self = std::this_thread::get_id()] {
        return std::all_of(callers.begin(), callers.end(), [self](std::thread::id caller) { return caller == self; });
    });
    if (callers.empty()) {
        ended.swap(handler);
    } else {
        orphaned = true;
    }
    lock.unlock();
}

} // namespace zarn::onvif::events
