#include "onvif/events/registration.h"

#include <zarn/onvif/events/handler.h>

#include <mutex>
#include <new>
#include <stdexcept>
#include <utility>
#include <vector>

namespace zarn::onvif::events {

namespace {

using Registrations = std::vector<std::shared_ptr<Registration>>;

/// Everybody who wants events. A change replaces the list, so that publishing copies one pointer under the lock.
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
