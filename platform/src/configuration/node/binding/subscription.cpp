#include "configuration/node/binding/subscription.h"

#include <zarn/configuration/event.h>

#include <utility>

namespace zarn::configuration::node::binding {

Subscription::Subscription(Node::Callback eventCallback) : callback(std::move(eventCallback)) {}

void Subscription::Enqueue(std::shared_ptr<Event const> event) {
    std::scoped_lock const lock(mutex);
    if (closed) return;
    // The waiting one will be delivered after this change, and its receiver reads the node then.
    if (event->Is<event::Changed>() && !changed.insert(event->GetNode().get()).second) return;
    waiting.push_back(std::move(event));
}

bool Subscription::Claim() {
    std::scoped_lock const lock(mutex);
    if (deliverer != std::thread::id()) return false;
    deliverer = std::this_thread::get_id();
    return true;
}

std::shared_ptr<Event const> Subscription::PopNext() {
    Node::Callback ended;
    std::scoped_lock const lock(mutex);
    if (!waiting.empty()) {
        auto event = std::move(waiting.front());
        waiting.pop_front();
        if (event->Is<event::Changed>()) changed.erase(event->GetNode().get());
        return event;
    }
    if (closed) ended.swap(callback);
    deliverer = {};
    idle.notify_all();
    return nullptr;
}

std::exception_ptr Subscription::Run() {
    std::exception_ptr first;
    while (auto const event = PopNext()) {
        try {
            callback(event);
        } catch (...) {
            if (!first) first = std::current_exception();
        }
    }
    return first;
}

std::exception_ptr Subscription::Deliver() { return Claim() ? Run() : nullptr; }

void Subscription::Close() noexcept {
    Node::Callback ended;
    std::deque<std::shared_ptr<Event const>> dropped;
    std::unique_lock lock(mutex);
    closed = true;
    changed.clear();
    dropped.swap(waiting);
    if (deliverer == std::this_thread::get_id()) return;
    idle.wait(lock, [this] { return deliverer == std::thread::id(); });
    ended.swap(callback);
    lock.unlock();
}

} // namespace zarn::configuration::node::binding
