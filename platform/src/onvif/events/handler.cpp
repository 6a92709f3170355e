#include <zarn/logging/limited_logger.h>
#include <zarn/onvif/events/handler.h>

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <new>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace zarn::onvif::events {

namespace {

/// A handler, and the threads that are running it. Thread: any.
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
    /// Called without the lock, but replaced only when no thread runs it.
    Handler handler;
    /// The threads that run the handler, once for each call.
    std::vector<std::thread::id> callers;
    bool closed = false;
    /// The last call destroys the handler.
    bool orphaned = false;
};

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

using Registrations = std::vector<std::shared_ptr<Registration>>;

/// The registered handlers. A change replaces the list, so that publishing copies one pointer under the lock.
class Registry {
public:
    constexpr Registry() = default;

    void Add(std::shared_ptr<Registration> const& registration) {
        std::scoped_lock const lock(mutex);
        auto changed = list ? std::make_shared<Registrations>(*list) : std::make_shared<Registrations>();
        changed->push_back(registration);
        list = std::move(changed);
    }

    void Remove(std::shared_ptr<Registration> const& registration) noexcept {
        std::scoped_lock const lock(mutex);
        try {
            auto changed = std::make_shared<Registrations>(*list);
            std::erase(*changed, registration);
            list = std::move(changed);
        } catch (std::bad_alloc const&) { // it stays in the list, where it does nothing once it is closed
        }
    }

    std::shared_ptr<Registrations const> Get() {
        std::scoped_lock const lock(mutex);
        return list;
    }

private:
    std::mutex mutex; ///< guards the list
    std::shared_ptr<Registrations const> list;
};

/// Initialised before any code runs, and destroyed after the static objects of all libraries that use this one, so
/// that they may hold bindings.
constinit Registry TheRegistry;

} // namespace

type::Binding RegisterHandler(Handler handler) {
    if (!handler) throw std::invalid_argument("RegisterHandler: the handler is empty");
    auto const registration = std::make_shared<Registration>(std::move(handler));
    std::function<void()> release = [registration] {
        TheRegistry.Remove(registration);
        registration->Close();
    };
    TheRegistry.Add(registration);
    return type::Binding(std::move(release));
}

void Publish(std::shared_ptr<zarn::meta::data::Event> event) {
    if (!event) throw std::invalid_argument("Publish: the event is null");
    auto const published = std::move(event); // no handler can take it from the next one
    auto const registrations = TheRegistry.Get();
    if (!registrations) return;
    for (auto const& registration : *registrations) registration->Call(published);
}

} // namespace zarn::onvif::events
