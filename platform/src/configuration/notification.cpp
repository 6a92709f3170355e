#include "configuration/notification.h"

#include "configuration/node/binding/subscription.h"

#include <zarn/configuration/node/map.h>

#include <exception>
#include <mutex>
#include <utility>

namespace zarn::configuration {

void Notification::Add(std::shared_ptr<Event const> event) {
    auto parent = event->GetNode()->parent.lock();
    items.push_back({std::move(event), std::move(parent)});
}

void Notification::Publish() {
    for (auto const& [event, parent] : items) {
        Queue(event, *event->GetNode());
        for (std::shared_ptr<Node> node = parent; node; node = node->parent.lock()) Queue(event, *node);
    }
    items.clear();
}

void Notification::Queue(std::shared_ptr<Event const> const& event, Node& listener) {
    std::scoped_lock const lock(listener.subscriptionsMutex);
    for (auto const& subscription : listener.subscriptions) {
        subscription->Enqueue(event);
        queued.push_back(subscription);
    }
}

void Notification::Deliver() {
    std::exception_ptr first;
    for (auto const& subscription : std::exchange(queued, {})) {
        auto const thrown = subscription->Deliver();
        if (!first) first = thrown;
    }
    if (first) std::rethrow_exception(first);
}

} // namespace zarn::configuration
