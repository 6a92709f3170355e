#include "host/events/status.h"

#include <boost/json/parse.hpp>
#include <gtest/gtest.h>

#include <vector>

namespace zarn::host::events {
namespace {

using zarn::onvif::events::SubscriptionStatus;

TEST(SubscriptionsStatus, ReportsEachQueueAndTheTotal) {
    std::vector<SubscriptionStatus> const subscriptions{{.id = 3, .queued = 2}, {.id = 7, .queued = 40}};
    EXPECT_EQ(
        ToJson(subscriptions),
        boost::json::parse(R"({"count": 2, "queued": 42, "list": [{"id": 3, "queued": 2}, {"id": 7, "queued": 40}]})"));
}

TEST(SubscriptionsStatus, ListsTheFirstThousandAndCountsAll) {
    std::vector<SubscriptionStatus> const subscriptions(1001, {.id = 1, .queued = 1});
    auto const status = ToJson(subscriptions);
    EXPECT_EQ(status.at("list").as_array().size(), 1000U);
    EXPECT_EQ(status.at("count"), 1001);
    EXPECT_EQ(status.at("queued"), 1001);
}

} // namespace
} // namespace zarn::host::events
