#include <zarn/onvif/events/subscription_gauge.h>

#include <algorithm>
#include <mutex>

namespace zarn::onvif::events {

namespace {

struct GaugeList {
    std::mutex mutex; ///< guards the list
    std::vector<SubscriptionGauge const*> list;
};

/// Initialised before any code runs, and destroyed after the static objects of all libraries that use this one, which
/// may be subscriptions.
constinit GaugeList TheGauges;

} // namespace

SubscriptionGauge::SubscriptionGauge(std::int32_t id) : id(id) {
    std::scoped_lock const lock(TheGauges.mutex);
    TheGauges.list.push_back(this);
}

SubscriptionGauge::~SubscriptionGauge() {
    std::scoped_lock const lock(TheGauges.mutex);
    auto& list = TheGauges.list;
    list.erase(std::ranges::find(list, this));
}

std::vector<SubscriptionStatus> GetSubscriptions() {
    std::scoped_lock const lock(TheGauges.mutex);
    std::vector<SubscriptionStatus> subscriptions;
    subscriptions.reserve(TheGauges.list.size());
    for (auto const* gauge : TheGauges.list) subscriptions.push_back({gauge->GetId(), gauge->GetQueued()});
    return subscriptions;
}

} // namespace zarn::onvif::events
