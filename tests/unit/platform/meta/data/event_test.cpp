#include <zarn/meta/data/channel.h>
#include <zarn/meta/data/count/value.h>
#include <zarn/meta/data/event.h>
#include <zarn/meta/data/object.h>
#include <zarn/meta/data/zone.h>

#include <gtest/gtest.h>

namespace zarn::meta::data {
namespace {

using Time = std::chrono::system_clock::time_point;

TEST(MetaEvent, ReturnsItsTypeRuleAndStart) {
    Time const start(std::chrono::nanoseconds(1'769'860'800'250'000'001));
    Event const event("presence", "Gate rule", start);
    EXPECT_EQ(event.GetType(), "presence");
    EXPECT_EQ(event.GetName(), "Gate rule");
    EXPECT_EQ(event.GetStart(), start);
}

TEST(MetaEvent, IsAContainerWithItsOwnTypeName) {
    Event const event("", "", Time());
    EXPECT_STREQ(event.GetTypeName(), "zarn.meta.data.Event");
    EXPECT_TRUE(event.Is<Container>());
    EXPECT_TRUE(event.Is<object::Object>());
    EXPECT_FALSE(event.Is<Object>());
}

TEST(MetaEvent, ContainsItsDetails) {
    Event event("count", "", Time());
    event.Emplace<Channel>(1U);
    event.Emplace<Zone>(Zone::Field);
    event.Emplace<Object>(12U);
    event.Emplace<count::Value>(-3);
    EXPECT_EQ(event.First<Channel>()->GetId(), 1U);
    EXPECT_EQ(event.First<Zone>()->GetType(), 0U);
    EXPECT_EQ(event.First<Object>()->GetId(), 12U);
    EXPECT_EQ(event.First<count::Value>()->GetValue(), -3);
}

} // namespace
} // namespace zarn::meta::data
