#pragma once

#include <zarn/meta/data/event.h>
#include <zarn/type/binding.h>

#include <functional>
#include <memory>

namespace zarn::onvif::events {

/// What is called with each analytics event. The event is shared by all handlers and must not be changed.
using Handler = std::function<void(std::shared_ptr<zarn::meta::data::Event>)>;

/// Calls a handler for every event published from now on, until the binding is released.
///
/// The handler runs on the thread that publishes, so several threads may be in it at once, and events of one thread
/// come in their order. It may register others, release bindings (its own included) and publish. What it throws is
/// logged, at most once a second, and goes no further.
///
/// Once the binding has been released, the handler does not run and will not run, and what it holds has been destroyed:
/// releasing waits for calls that run on other threads, so it must not happen under a lock that the handler takes. A
/// binding released by its own handler does not wait for the call in which that happens; the handler is then destroyed
/// when that call ends.
/// Throws std::invalid_argument for an empty function. Thread: any.
[[nodiscard]] type::Binding RegisterHandler(Handler handler);

/// Calls every registered handler with an event, one after the other in the order of their registration, on this
/// thread. Handlers that are registered meanwhile do not get it. This is the host's side: whatever makes analytics
/// events calls it. Throws std::invalid_argument for a null event, and nothing because of a handler. Thread: any,
/// several at once.
void Publish(std::shared_ptr<zarn::meta::data::Event> event);

} // namespace zarn::onvif::events
