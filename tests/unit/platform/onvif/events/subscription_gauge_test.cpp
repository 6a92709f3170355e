#include <zarn/onvif/events/subscription_gauge.h>

#include <gmock/gmock.h>

#include <atomic>
#include <optional>
#include <thread>

namespace zarn::onvif::events {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Status = SubscriptionStatus;

TEST(SubscriptionGauge, IsListedWhileItExists) {
    EXPECT_THAT(GetSubscriptions(), IsEmpty());
    {
        SubscriptionGauge const gauge(7);
        EXPECT_THAT(GetSubscriptions(), ElementsAre(Status{7, 0}));
    }
    EXPECT_THAT(GetSubscriptions(), IsEmpty());
}

TEST(SubscriptionGauge, ReportsTheLatestNumber) {
    SubscriptionGauge gauge(1);
    gauge.SetQueued(3);
    gauge.SetQueued(2);
    EXPECT_THAT(GetSubscriptions(), ElementsAre(Status{1, 2}));
}

TEST(SubscriptionGauge, IsListedInCreationOrder) {
    std::optional<SubscriptionGauge> first(3);
    SubscriptionGauge const second(1);
    SubscriptionGauge const third(2);
    EXPECT_THAT(GetSubscriptions(), ElementsAre(Status{3, 0}, Status{1, 0}, Status{2, 0}));
    first.reset();
    EXPECT_THAT(GetSubscriptions(), ElementsAre(Status{1, 0}, Status{2, 0}));
}

TEST(SubscriptionGauge, CanBeReadDuringConcurrentChanges) {
    std::atomic<bool> over = false;
    std::thread client([&] {
        for (std::int32_t id = 0; !over; ++id) {
            SubscriptionGauge gauge(id);
            gauge.SetQueued(5);
        }
    });
    for (int i = 0; i < 1000; ++i) EXPECT_LE(GetSubscriptions().size(), 1U);
    over = true;
    client.join();
}

} // namespace
} // namespace zarn::onvif::events
