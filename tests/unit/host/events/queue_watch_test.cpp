#include "host/events/queue_watch.h"

#include <zarn/logging/capture.h>
#include <zarn/onvif/events/subscription_gauge.h>

#include <gmock/gmock.h>

namespace zarn::host::events {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class QueueWatchTest : public testing::Test {
protected:
    QueueWatchTest() {
        few.SetQueued(4);
        many.SetQueued(6);
    }

    zarn::onvif::events::SubscriptionGauge few{1};
    zarn::onvif::events::SubscriptionGauge many{2};
    logging::Capture log;
    QueueWatch watch;
};

TEST_F(QueueWatchTest, LogsNothingUpToTheLimit) {
    watch.CheckQueues(10);
    EXPECT_THAT(log.GetLines(), IsEmpty());
}

TEST_F(QueueWatchTest, WarnsOnceWhenAllQueuesTogetherPassTheLimit) {
    for (int i = 0; i < 3; ++i) watch.CheckQueues(9);
    ASSERT_THAT(log.GetLines(), SizeIs(1));
    EXPECT_EQ(log.GetLines().front().level, logging::Level::Warning);
    EXPECT_THAT(log.GetLines().front().text, HasSubstr("10 events wait in 2 subscriptions"));
}

TEST_F(QueueWatchTest, WarnsAgainAfterTheQueuesHaveShrunk) {
    watch.CheckQueues(9);
    many.SetQueued(0);
    watch.CheckQueues(9);
    many.SetQueued(7);
    watch.CheckQueues(9);
    EXPECT_THAT(log.GetLines(), SizeIs(2));
}

} // namespace
} // namespace zarn::host::events
