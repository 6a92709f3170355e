#pragma once

#include "event_ptr.h"
#include "event_queue.h"
#include "events/wanted_topics.h"
#include "fair_mutex.h"

#include <zarn/asio/global_context.h>
#include <zarn/job/condition_variable.h>
#include <zarn/onvif/events/subscription_gauge.h>

#include <boost/asio/system_timer.hpp>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace zarn::service::onvif {

/// A pull-point subscription: it queues the host's events until its client pulls them, and ends at its termination
/// time. Live subscriptions are found by id. Thread: any, for all operations.
class Subscription {
public:
    using Time = std::chrono::system_clock::time_point;

    /// The topics of a client's filter; empty means all.
    using Topics = std::set<std::string, std::less<>>;

    /// Registers for the host's events, the first time; for as long as the library is loaded. Takes no lock after that.
    static void RegisterForEvents();

    /// Makes a subscription and returns its id: 1, 2, 3 and so on, none used twice.
    static std::int32_t Create(Time termination, Topics const& topics);

    /// The live subscription; null when there is none.
    static std::shared_ptr<Subscription> Find(std::int32_t id);

    /// Ends the subscription if it lives.
    static void End(std::int32_t id);

    /// Wakes every WaitForEvents so that it checks `isStopped` again.
    static void WakeWaiting();

    Subscription(Subscription const&) = delete;
    Subscription& operator=(Subscription const&) = delete;

    events::WantedTopics const& GetTopics() const { return topics; }

    Time GetTermination() const;

    /// Moves the termination time; in the past it ends the subscription at once. Returns false when it has ended.
    bool Renew(Time termination);

    bool HasEvents() const;

    /// Waits until there are events, the deadline has passed, or `isStopped` says so, which is called under a lock.
    /// oldest  when not null, gets the oldest event out of the queue, so that one event ends the wait of one thread
    /// only Returns false when the subscription has ended.
    bool WaitForEvents(std::chrono::steady_clock::time_point deadline, std::function<bool()> const& isStopped,
                       EventPtr* oldest);

    /// Takes the oldest event out of the queue; null when there is none or the subscription has ended.
    EventPtr Pop();

    /// Takes the oldest events out of the queue, in their order: as many as there are, at most `most`.
    std::vector<EventPtr> Take(std::size_t most);

private:
    using Live = std::map<std::int32_t, std::shared_ptr<Subscription>>;
    using Snapshot = std::shared_ptr<std::vector<std::shared_ptr<Subscription>> const>;

    /// The registration for the host's events. Its end, when the library is unloaded, is also the subscriptions' end,
    /// before the state below is destroyed.
    struct Registration;

    Subscription(std::int32_t id, Topics const& topics);

    static void Queue(EventPtr const& event);
    static Snapshot GetLive();
    static std::int32_t GetNextSubscriptionId();
    static void End(std::int32_t id, std::optional<Time> termination);

    void StartTimer(Time termination);

    void Append(EventPtr const& event);
    EventPtr PopLocked();

    // Locks are taken in this order: Publishing, Mutex, a subscription's own.

    /// Held while an event goes into all queues, so that all subscriptions get all events in the same order. Fair, so
    /// that a thread with thousands of events lets others publish in between.
    static FairMutex Publishing;
    static std::mutex Mutex; ///< guards the list of live subscriptions
    static Live Subscriptions;
    static Snapshot LatestSnapshot; ///< what publishing iterates over, without Mutex; null after a change

    std::int32_t const id;
    events::WantedTopics const topics;
    mutable std::mutex mutex; ///< guards the members below
    zarn::onvif::events::SubscriptionGauge gauge;
    asio::GlobalContext context;                    ///< keeps the timer's thread
    boost::asio::system_timer timer{context.Get()}; ///< its expiry is the termination time
    EventQueue events;
    bool hasEnded = false;
    unsigned waiting = 0; ///< threads in WaitForEvents
    std::atomic<bool> hasNews =
        false; ///< an event arrived while a thread waits, which is still to be notified; not guarded
    job::ConditionVariable changed; ///< an event arrived, the subscription ended, or waiting is to stop
};

} // namespace zarn::service::onvif
