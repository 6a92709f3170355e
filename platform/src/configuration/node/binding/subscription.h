#pragma once

#include <zarn/configuration/node.h>

#include <condition_variable>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_set>

namespace zarn::configuration::node::binding {

/// A callback with the events that wait for it. One thread at a time delivers them, outside all locks; the events that
/// come meanwhile are left to it, so that no thread ever waits for another one's callback, except to close. Thread:
/// any.
class Subscription {
public:
    explicit Subscription(Node::Callback eventCallback);

    /// Puts an event behind the others, unless it is a change of a node for which one waits already.
    void Enqueue(std::shared_ptr<Event const> event);

    /// Makes this thread the one that delivers. Returns false when there is one already.
    bool Claim();

    /// Delivers until no event waits; this thread must have claimed it. Returns what the callback threw first, or null.
    std::exception_ptr Run();

    /// Delivers what waits, unless another thread is delivering. Returns as Run.
    std::exception_ptr Deliver();

    /// Ends the subscription: drops what waits, and waits for a callback that is running on another thread.
    void Close() noexcept;

private:
    std::shared_ptr<Event const> PopNext();

    std::mutex mutex;
    std::condition_variable idle;
    /// Called without the mutex, but replaced only by the delivering thread or when there is none.
    Node::Callback callback;
    std::deque<std::shared_ptr<Event const>> waiting;
    /// The nodes with a waiting event::Changed.
    std::unordered_set<Node const*> changed;
    /// The thread that delivers; none when empty.
    std::thread::id deliverer;
    bool closed = false;
};

} // namespace zarn::configuration::node::binding
