#include "host/video/viewer_queue.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <vector>

namespace zarn::host::video {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::size_t Large = std::size_t{6} * 1024 * 1024;

class ViewerQueueTest : public testing::Test {
protected:
    std::shared_ptr<AccessUnit> Make(bool isKey, std::size_t size = 10) {
        auto unit = std::make_shared<AccessUnit>();
        unit->isKey = isKey;
        unit->size = size;
        unit->number = ++count;
        unit->stamp = {40ms * static_cast<int>(count), 40ms * static_cast<int>(count)};
        return unit;
    }

    /// Takes everything that waits, as numbers.
    std::vector<std::uint64_t> TakeAll() {
        std::vector<std::uint64_t> numbers;
        for (; !queue.IsEmpty(); queue.RemoveFirst()) numbers.push_back(queue.GetFirst().unit->number);
        return numbers;
    }

    ViewerQueue queue;
    std::uint64_t count = 0;
};

TEST_F(ViewerQueueTest, IgnoresEverythingBeforeTheStart) {
    queue.Push(Make(true));
    EXPECT_THAT(TakeAll(), IsEmpty());
}

TEST_F(ViewerQueueTest, BeginsWithTheGroupAndGoesOn) {
    queue.Start({Make(true), Make(false)}, 80ms);
    queue.Push(Make(false));
    EXPECT_THAT(TakeAll(), ElementsAre(1, 2, 3));
}

TEST_F(ViewerQueueTest, SkipsWhatItHasAlready) {
    auto const key = Make(true);
    auto const next = Make(false);
    queue.Start({key, next}, 80ms);
    queue.Push(next);
    queue.Push(Make(false));
    EXPECT_THAT(TakeAll(), ElementsAre(1, 2, 3));
}

TEST_F(ViewerQueueTest, WaitsForAKeyFrameWithoutAGroup) {
    queue.Start({}, 0ms);
    queue.Push(Make(false));
    queue.Push(Make(true));
    queue.Push(Make(false));
    EXPECT_EQ(queue.GetFirst().time, 0ms);
    EXPECT_THAT(TakeAll(), ElementsAre(2, 3));
}

TEST_F(ViewerQueueTest, BeginsWithAsMuchOfTheGroupAsItHolds) {
    queue.Start({Make(true, Large), Make(false, Large), Make(false, Large), Make(false, Large)}, 160ms);
    queue.Push(Make(false));
    EXPECT_THAT(TakeAll(), ElementsAre(1, 2, 3)) << "more than 16 MiB wait";
    queue.Push(Make(false));
    EXPECT_THAT(TakeAll(), IsEmpty());
    queue.Push(Make(true));
    queue.Push(Make(false));
    EXPECT_THAT(TakeAll(), ElementsAre(7, 8));
}

TEST_F(ViewerQueueTest, DropsWhatWaitsWhenItIsFullAndResumesAtAKeyFrame) {
    queue.Start({Make(true, Large), Make(false, Large)}, 80ms);
    queue.Push(Make(false, Large));
    queue.Push(Make(false));
    EXPECT_TRUE(queue.IsEmpty());
    EXPECT_EQ(queue.GetBytes(), 0U);
    queue.Push(Make(false));
    queue.Push(Make(true));
    queue.Push(Make(false));
    EXPECT_THAT(TakeAll(), ElementsAre(6, 7));
}

TEST_F(ViewerQueueTest, GoesOnAtAKeyFrameThatComesWhenItIsFull) {
    queue.Start({Make(true, Large), Make(false, Large), Make(false, Large)}, 120ms);
    queue.Push(Make(true, Large));
    EXPECT_THAT(TakeAll(), ElementsAre(4));
}

TEST_F(ViewerQueueTest, DropsWhatWaitsTooLong) {
    queue.Start({Make(true)}, 40ms);
    auto const late = Make(true);
    late->stamp = {40ms + ViewerQueue::MaximumAge, 40ms + ViewerQueue::MaximumAge};
    queue.Push(late);
    EXPECT_EQ(queue.GetFirst().unit->number, 1U);
    auto const tooLate = Make(false);
    tooLate->stamp = {80ms + ViewerQueue::MaximumAge, 80ms + ViewerQueue::MaximumAge};
    queue.Push(tooLate);
    EXPECT_TRUE(queue.IsEmpty());
}

TEST_F(ViewerQueueTest, KeepsAGroupOfLongAgoForANewViewer) {
    queue.Start({Make(true), Make(false)}, 60s);
    auto const next = Make(false);
    next->stamp = {60s, 60s};
    queue.Push(next);
    EXPECT_THAT(TakeAll(), ElementsAre(1, 2, 3));
}

TEST_F(ViewerQueueTest, ResumesAtAKeyFrameAfterALoss) {
    queue.Start({Make(true)}, 40ms);
    queue.Skip();
    queue.Push(Make(false));
    queue.Push(Make(true));
    EXPECT_THAT(TakeAll(), ElementsAre(1, 3));
}

TEST_F(ViewerQueueTest, DropsWhatWaitsWhenItStops) {
    queue.Start({Make(true)}, 40ms);
    queue.Stop(40ms);
    queue.Push(Make(true));
    EXPECT_THAT(TakeAll(), IsEmpty());
}

TEST_F(ViewerQueueTest, SendsTheGroupAgainAfterAPause) {
    auto const key = Make(true);
    queue.Start({key}, 40ms);
    queue.Stop(40ms);
    queue.Start({key}, 80ms);
    EXPECT_THAT(TakeAll(), ElementsAre(1));
}

TEST_F(ViewerQueueTest, ContinuesTheClockAfterAPause) {
    auto const key = Make(true);
    queue.Start({key}, 40ms);
    queue.Stop(1040ms);
    queue.Start({key}, 5000ms);
    EXPECT_EQ(queue.GetFirst().time, 1000ms);
    EXPECT_EQ(queue.Map(5100ms), 1000ms + 99200us + 100ms);
}

} // namespace
} // namespace zarn::host::video
