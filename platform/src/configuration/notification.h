#pragma once

#include <zarn/configuration/node.h>

#include <memory>
#include <vector>

namespace zarn::configuration {

/// The events of one change. They are collected while the change is made, put into the queues of the bindings when it
/// is complete, and delivered when the lock of the tree has been given back.
class Notification {
public:
    /// Collects an event. The way up from its node is that of this moment, so a removal is added before the node is
    /// detached.
    void Add(std::shared_ptr<Event const> event);

    /// Queues the events for all subscriptions of their nodes or to one above. Called with the lock of the tree, so
    /// that every binding sees the changes in their order.
    void Publish();

    /// Calls back. Throws what a callback threw first, after all were called.
    void Deliver();

private:
    struct Item {
        std::shared_ptr<Event const> event;
        std::shared_ptr<Node> parent;
    };

    void Queue(std::shared_ptr<Event const> const& event, Node& listener);

    std::vector<Item> items;
    std::vector<std::shared_ptr<node::binding::Subscription>> queued;
};

/// Makes a change: calls `change(Notification&)` with the lock of the tree, then delivers the events.
template <class Change>
void Commit(Node const& node, Change change) {
    Notification notification;
    {
        auto const lock = node.GetLock();
        change(notification);
        notification.Publish();
    }
    notification.Deliver();
}

} // namespace zarn::configuration
