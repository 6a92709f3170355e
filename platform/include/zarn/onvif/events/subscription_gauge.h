#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zarn::onvif::events {

/// Shows the host how many events one subscription of a client keeps. The subscription has it as a member.
class SubscriptionGauge {
public:
    /// id  of the subscription, as its client knows it
    explicit SubscriptionGauge(std::int32_t id);
    ~SubscriptionGauge();

    SubscriptionGauge(SubscriptionGauge const&) = delete;
    SubscriptionGauge& operator=(SubscriptionGauge const&) = delete;

    /// Takes a few nanoseconds. Thread: one at a time.
    void SetQueued(std::size_t count) noexcept { queued.store(count, std::memory_order_relaxed); }

    /// The number of the subscription.
    std::int32_t GetId() const noexcept { return id; }

    /// Thread: any.
    std::size_t GetQueued() const noexcept { return queued.load(std::memory_order_relaxed); }

private:
    std::int32_t const id;
    std::atomic<std::size_t> queued = 0;
};

/// A subscription as the host sees it.
struct SubscriptionStatus {
    std::int32_t id;    ///< as its client knows it
    std::size_t queued; ///< events that its client has not fetched

    bool operator==(SubscriptionStatus const&) const = default;
};

/// The subscriptions that there are, the oldest first. Never waits for a thread that queues or fetches events. Thread:
/// any.
std::vector<SubscriptionStatus> GetSubscriptions();

} // namespace zarn::onvif::events
