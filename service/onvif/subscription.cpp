#include "subscription.h"

#include <zarn/job/wait_scope.h>
#include <zarn/onvif/events/handler.h>

#include <boost/asio/post.hpp>

#include <atomic>
#include <future>
#include <optional>
#include <utility>
#include <vector>

namespace zarn::service::onvif {

std::mutex Subscription::Mutex;
Subscription::Live Subscription::Subscriptions;
type::Binding Subscription::EventHandlerBinding;

struct Subscription::Ending {
    Ending() = default;
    Ending(Ending const&) = delete;
    Ending& operator=(Ending const&) = delete;

    ~Ending() {
        asio::GlobalContext const last;
        type::Binding binding;
        Live subscriptions;
        {
            std::scoped_lock const lock(Mutex);
            std::swap(binding, EventHandlerBinding);
            std::swap(subscriptions, Subscriptions);
        }
        binding.Reset();
        subscriptions.clear();
        // Timer handlers that are already queued run before this one.
        std::promise<void> done;
        boost::asio::post(last.Get(), [&done] { done.set_value(); });
        done.get_future().wait();
    }
};

void Subscription::RegisterForEvents() {
    std::scoped_lock const lock(Mutex);
    if (EventHandlerBinding) return;
    EventHandlerBinding = zarn::onvif::events::RegisterHandler(Queue);
    static Ending const ending; // made after what it uses, so that it is destroyed before
}

/// Thread: the host's.
void Subscription::Queue(EventPtr const& event) {
    std::vector<std::shared_ptr<Subscription>> awaited; // woken without the mutex, which they need at once
    {
        std::scoped_lock const lock(Mutex);
        for (auto const& [id, subscription] : Subscriptions) {
            if (subscription->waiting > 0) awaited.push_back(subscription);
            subscription->events.push_back(event);
            subscription->gauge.SetQueued(subscription->events.size());
        }
    }
    for (auto const& subscription : awaited) subscription->changed.notify_all();
}

std::int32_t Subscription::GetNextSubscriptionId() {
    static std::atomic<std::int32_t> SubscriptionId = 0;
    return ++SubscriptionId;
}

Subscription::Subscription(std::int32_t id, Topics topics) : id(id), topics(std::move(topics)), gauge(id) {}

std::int32_t Subscription::Create(Time termination, Topics topics) {
    auto const id = GetNextSubscriptionId();
    Live made; // without the mutex: making and releasing one takes other locks
    auto const& subscription = made.emplace(id, std::make_shared<Subscription>(id, std::move(topics))).first->second;
    std::scoped_lock const lock(Mutex);
    subscription->StartTimer(termination); // whose handler waits until the subscription is there
    Subscriptions.merge(made);
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
    // Released after the mutex: they may be many events, and their last references.
    Live::node_type ended;
    std::deque<EventPtr> unread;
    std::scoped_lock const lock(Mutex);
    auto const found = Subscriptions.find(id);
    if (found == Subscriptions.end() || (termination && found->second->timer.expiry() != *termination)) return;
    ended = Subscriptions.extract(found);
    auto& subscription = *ended.mapped();
    subscription.hasEnded = true;
    std::swap(unread, subscription.events);
    subscription.gauge.SetQueued(0);
    subscription.changed.notify_all();
}

void Subscription::WakeWaiting() {
    std::scoped_lock const lock(Mutex); // rules out a lost wake-up between a check and its wait
    for (auto const& [id, subscription] : Subscriptions) subscription->changed.notify_all();
}

Subscription::Time Subscription::GetTermination() const {
    std::scoped_lock const lock(Mutex);
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
    std::scoped_lock const lock(Mutex);
    if (!hasEnded) StartTimer(termination);
    return !hasEnded;
}

bool Subscription::HasEvents() const {
    std::scoped_lock const lock(Mutex);
    return !events.empty();
}

bool Subscription::WaitForEvents(std::chrono::steady_clock::time_point deadline, std::function<bool()> const& isStopped,
                                 EventPtr* oldest) {
    job::WaitScope const waits;
    std::unique_lock lock(Mutex);
    ++waiting;
    while (!hasEnded && events.empty() && !isStopped() && std::chrono::steady_clock::now() < deadline)
        changed.wait_until(lock, deadline);
    --waiting;
    if (oldest) *oldest = PopLocked();
    return !hasEnded;
}

Subscription::EventPtr Subscription::Pop() {
    std::scoped_lock const lock(Mutex);
    return PopLocked();
}

Subscription::EventPtr Subscription::PopLocked() {
    if (events.empty()) return nullptr;
    auto event = std::move(events.front());
    events.pop_front();
    gauge.SetQueued(events.size());
    return event;
}

} // namespace zarn::service::onvif
