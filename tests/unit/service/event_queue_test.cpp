#include <service/onvif/event_queue.h>
#include <zarn/meta/data/event.h>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <utility>

namespace zarn::service::onvif {
namespace {

std::shared_ptr<meta::data::Event> MakeNumbered(int number) {
    return std::make_shared<meta::data::Event>("count", std::to_string(number),
                                               std::chrono::system_clock::time_point());
}

TEST(EventQueue, ReturnsEventsInTheirOrderHoweverManyThereAre) {
    // From 0 to 100 events at a time, so that both ends meet the bounds of blocks in every way.
    EventQueue queue;
    int pushed = 0;
    int popped = 0;
    for (int size = 0; size <= 100; ++size) {
        while (pushed < popped + size) queue.Push(MakeNumbered(pushed++));
        EXPECT_EQ(queue.GetSize(), static_cast<std::size_t>(size));
        while (pushed - popped > size / 3) EXPECT_EQ(queue.Pop()->GetName(), std::to_string(popped++));
    }
    while (!queue.IsEmpty()) EXPECT_EQ(queue.Pop()->GetName(), std::to_string(popped++));
    EXPECT_EQ(popped, pushed);
    EXPECT_EQ(queue.GetSize(), 0U);
}

TEST(EventQueue, KeepsNoEventThatIsTaken) {
    EventQueue queue;
    auto const event = MakeNumbered(1);
    for (int i = 0; i < 100; ++i) queue.Push(event);
    EXPECT_EQ(event.use_count(), 101);
    while (queue.GetSize() > 40) queue.Pop();
    EXPECT_EQ(event.use_count(), 41);
    while (!queue.IsEmpty()) queue.Pop();
    EXPECT_EQ(event.use_count(), 1);
}

TEST(EventQueue, CanBeExchanged) {
    EventQueue queue;
    for (int i = 0; i < 50; ++i) queue.Push(MakeNumbered(i));
    for (int i = 0; i < 40; ++i) queue.Pop();
    EventQueue other;
    queue.Swap(other);
    EXPECT_TRUE(queue.IsEmpty());
    queue.Push(MakeNumbered(7));
    EXPECT_EQ(queue.Pop()->GetName(), "7");
    EXPECT_EQ(other.GetSize(), 10U);
    EXPECT_EQ(other.Pop()->GetName(), "40");
}

} // namespace
} // namespace zarn::service::onvif
