#include "subscription.h"

#include <zarn/onvif/events/handler.h>
#include <zarn/type/binding.h>

#include <boost/asio/post.hpp>

#include <algorithm>
#include <atomic>
#include <future>
#include <optional>
#include <utility>
#include <vector>

namespace zarn::service::onvif {

FairMutex Subscription::Publishing;
std::mutex Subscription::Mutex;
Subscription::Live Subscription::Subscriptions;
Subscription::Snapshot Subscription::LatestSnapshot;

struct Subscription::Registration {
    Registration() = default;
    Registration(Registration const&) = delete;
    Registration& operator=(Registration const&) = delete;

    ~Registration() {
        asio::GlobalContext const last;
        binding.Reset(); // waits for the threads that publish
        Live subscriptions;
        Snapshot snapshot;
        {
            std::scoped_lock const lock(Mutex);
            std::swap(subscriptions, Subscriptions);
            std::swap(snapshot, LatestSnapshot);
        }
        subscriptions.clear();
        snapshot.reset();
        // Timer handlers that are already queued run before this one.
        std::promise<void> done;
        boost::asio::post(last.Get(), [&done] { done.set_value(); });
        done.get_future().wait();
    }

    type::Binding binding = zarn::onvif::events::RegisterHandler(Queue);
};

void Subscription::RegisterForEvents() {
    static Registration const registration; // made after what it uses, so that it is destroyed before
}

/// Thread: the host's.
void Subscription::Queue(EventPtr const& event) {
    // Used up without the lock, also when memory is short: what is woken runs at once, and a last reference waits for
    // timer handlers.
    struct Receivers {
        ~Receivers() {
            if (!live) return;
            for (auto const& subscription : *live) {
                if (subscription->hasNews.load(std::memory_order_relaxed) && subscription->hasNews.exchange(false)) {
                    subscription->changed.NotifyAll();
                }
            }
        }

        Snapshot live;
    } receivers;

    std::scoped_lock const lock(Publishing);
    receivers.live = GetLive();
    for (auto const& subscription : *receivers.live) subscription->Append(event);
}

/// The live subscriptions, ascending by id. They may end meanwhile.
Subscription::Snapshot Subscription::GetLive() {
    std::scoped_lock const lock(Mutex);
    if (!LatestSnapshot) {
        std::vector<std::shared_ptr<Subscription>> live;
        live.reserve(Subscriptions.size());
        for (auto const& [id, subscription] : Subscriptions) live.push_back(subscription);
        LatestSnapshot = std::make_shared<std::vector<std::shared_ptr<Subscription>> const>(std::move(live));
    }
    return LatestSnapshot;
}

void Subscription::Append(EventPtr const& event) {
    std::scoped_lock const lock(mutex);
    if (hasEnded) return;
    events.Push(event);
    gauge.SetQueued(events.GetSize());
    if (waiting > 0) hasNews = true;
}

std::int32_t Subscription::GetNextSubscriptionId() {
    static std::atomic<std::int32_t> SubscriptionId = 0;
    return ++SubscriptionId;
}

Subscription::Subscription(std::int32_t id, Topics const& topics) : id(id), topics(topics), gauge(id) {}

std::int32_t Subscription::Create(Time termination, Topics const& topics) {
    auto const id = GetNextSubscriptionId();
    // Made and released without the mutex: that takes other locks.
    std::shared_ptr<Subscription> const subscription(new Subscription(id, topics));
    Live made{{id, subscription}};
    Snapshot outdated;
    std::scoped_lock const lock(Mutex);
    subscription->StartTimer(termination); // whose handler waits until the subscription is there
    Subscriptions.merge(made);
    std::swap(outdated, LatestSnapshot);
    return id;
}

std::shared_ptr<Subscription> Subscription::Find(std::int32_t id) {
    std::scoped_lock const lock(Mutex);
    auto const found = Subscriptions.find(id);
    return found == Subscriptions.end() ? nullptr : found->second;
}

void Subscription::End(std::int32_t id) { End(id, std::nullopt); }

/// termination  only a subscription that still ends then; a wait may complete just before a renewal
void Subscription::End(std::int32_t id, std::optional<Time> termination) {
    // Released after the mutexes: they may be many events, and their last references.
    Live::node_type ended;
    Snapshot outdated;
    EventQueue unread;
    std::scoped_lock const lock(Mutex);
    auto const found = Subscriptions.find(id);
    if (found == Subscriptions.end()) return;
    auto& subscription = *found->second;
    std::scoped_lock const own(subscription.mutex);
    if (termination && subscription.timer.expiry() != *termination) return;
    ended = Subscriptions.extract(found);
    std::swap(outdated, LatestSnapshot);
    subscription.hasEnded = true;
    unread.Swap(subscription.events);
    subscription.gauge.SetQueued(0);
    subscription.changed.NotifyAll();
}

void Subscription::WakeWaiting() {
    auto const live = GetLive();
    for (auto const& subscription : *live) {
        std::scoped_lock const lock(subscription->mutex); // rules out a lost wake-up between a check and its wait
        subscription->changed.NotifyAll();
    }
}

Subscription::Time Subscription::GetTermination() const {
    std::scoped_lock const lock(mutex);
    return timer.expiry();
}

/// Replaces the wait for the previous termination time. When it throws, that wait goes on.
void Subscription::StartTimer(Time termination) {
    boost::asio::system_timer next(context.Get(), termination);
    next.async_wait([id = id, termination](boost::system::error_code error) {
        if (!error) End(id, termination);
    });
    timer = std::move(next); // which cancels the previous wait
}

bool Subscription::Renew(Time termination) {
    std::scoped_lock const lock(mutex);
    if (!hasEnded) StartTimer(termination);
    return !hasEnded;
}

bool Subscription::HasEvents() const {
    std::scoped_lock const lock(mutex);
    return !events.IsEmpty();
}

bool Subscription::WaitForEvents(std::chrono::steady_clock::time_point deadline, std::function<bool()> const& isStopped,
                                 EventPtr* oldest) {
    std::unique_lock lock(mutex);
    {
        struct Counted {
            explicit Counted(unsigned& count) : count(++count) {}

            ~Counted() { --count; }

            unsigned& count;
        } const counted(waiting);

        while (!hasEnded && events.IsEmpty() && !isStopped() && std::chrono::steady_clock::now() < deadline)
            changed.WaitUntil(lock, deadline);
    }
    if (oldest) *oldest = PopLocked();
    return !hasEnded;
}

EventPtr Subscription::Pop() {
    std::scoped_lock const lock(mutex);
    return PopLocked();
}

std::vector<EventPtr> Subscription::Take(std::size_t most) {
    std::vector<EventPtr> taken;
    std::scoped_lock const lock(mutex);
    auto const count = std::min(most, events.GetSize());
    taken.reserve(count); // the only step that can fail, before any event leaves the queue
    while (taken.size() < count) taken.push_back(events.Pop());
    gauge.SetQueued(events.GetSize());
    return taken;
}

EventPtr Subscription::PopLocked() {
    if (events.IsEmpty()) return nullptr;
    auto event = events.Pop();
    gauge.SetQueued(events.GetSize());
    return event;
}

} // namespace zarn::service::onvif
