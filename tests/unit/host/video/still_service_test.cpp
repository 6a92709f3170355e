#include "host/video/gstreamer.h"
#include "host/video/still_decoder.h"
#include "host/video/still_service.h"
#include "support/eventually.h"
#include "unit/host/video/stream_fixture.h"
#include "unit/host/video/video_test.h"

#include <gmock/gmock.h>

#include <functional>
#include <future>
#include <vector>

namespace zarn::host::video {
namespace {

using namespace std::chrono_literals;
using Error = SnapshotError;

class StillServiceTest : public StreamTest {
protected:
    StillServiceTest() { InitializeGStreamer(); }

    std::future<Snapshot> Request(StillService& service) {
        auto promise = std::make_shared<std::promise<Snapshot>>();
        auto answer = promise->get_future();
        service.Request(slot, [promise](Snapshot snapshot) { promise->set_value(std::move(snapshot)); });
        return answer;
    }

    /// Asks while the only worker is held up and another channel waits behind this one.
    Snapshot RequestWhileOthersWait(StillService& service) {
        auto const noVideo = std::make_shared<Stream>(meta::data::VideoInfo());
        std::promise<void> go;
        service.Request(std::make_shared<StillService::Slot>(noVideo),
                        [goes = go.get_future().share()](Snapshot const&) { goes.wait(); });
        auto answer = Request(service);
        service.Request(std::make_shared<StillService::Slot>(noVideo), [](Snapshot const&) {});
        go.set_value();
        return answer.get();
    }

    /// What the service should make of the first `count` access units of the newest group.
    std::string Decode(std::size_t count) {
        auto recent = *stream->GetRecent();
        recent.units.resize(count);
        return std::string(DecodeStill(recent, Stream::Clock::now() + 60s, {}).jpeg->ToStringView());
    }

    /// Publishes the newest group again: the key frame with this age, the rest as just arrived.
    void PublishAgain(std::chrono::milliseconds ageOfKeyFrame) {
        auto const units = stream->GetRecent()->units;
        for (auto const& unit : units) {
            PublishBuffer(unit->data.get(), Stream::Clock::now() - (unit->isKey ? ageOfKeyFrame : 0ms));
        }
    }

    /// Retries when the video was too old at the time of the request, as can happen on a stalled machine.
    static void WaitUntilInTime(std::function<Snapshot()> const& ask) {
        EXPECT_TRUE(test::Eventually([&] { return ask().error != Error::NoFrame; }));
    }

    StillService::Bounds const patient{.patience = 60s, .decodingTime = 60s};
    StillService::Bounds const oneWorker{.workers = 1, .patience = 60s, .decodingTime = 60s, .reuse = 0ms};
    std::shared_ptr<StillService::Slot> slot = std::make_shared<StillService::Slot>(stream);
    StillService::Bounds const nobodyWorks{.workers = 0, .waiting = 3, .patience = 50ms};
};

TEST_F(StillServiceTest, EncodesTheNewestAccessUnit) {
    StillService service(patient);
    Snapshot snapshot;
    WaitUntilInTime([&] {
        PublishVideo(5);
        snapshot = Request(service).get();
        return snapshot;
    });
    ASSERT_EQ(snapshot.error, Error::None) << snapshot.detail;
    auto const picture = DecodeJpeg(snapshot.jpeg->ToStringView());
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->width, 128);
    EXPECT_EQ(picture->height, 96);
}

TEST_F(StillServiceTest, EncodesANewPictureWhenTheLastIsTooOld) {
    StillService service({.patience = 60s, .decodingTime = 60s, .reuse = 0ms});
    Snapshot first;
    Snapshot second;
    WaitUntilInTime([&] {
        PublishVideo(2);
        first = Request(service).get();
        second = Request(service).get();
        return second;
    });
    ASSERT_EQ(second.error, Error::None) << second.detail;
    EXPECT_NE(first.jpeg, second.jpeg);
}

TEST_F(StillServiceTest, EncodesTheKeyFrameWhileOtherChannelsWait) {
    StillService service(oneWorker);
    PublishVideo(5);
    ASSERT_NE(Decode(1), Decode(5));
    Snapshot snapshot;
    EXPECT_TRUE(test::Eventually([&] {
        PublishAgain(0ms);
        snapshot = RequestWhileOthersWait(service);
        return snapshot.jpeg && snapshot.jpeg->ToStringView() == Decode(1);
    })) << snapshot.detail;
}

TEST_F(StillServiceTest, EncodesTheNewestAccessUnitWhenTheKeyFrameIsOldAlthoughOthersWait) {
    StillService service(oneWorker);
    PublishVideo(5);
    Snapshot snapshot;
    WaitUntilInTime([&] {
        PublishAgain(StillService::GreatestAgeWhileOthersWait);
        return snapshot = RequestWhileOthersWait(service);
    });
    ASSERT_EQ(snapshot.error, Error::None) << snapshot.detail;
    EXPECT_EQ(snapshot.jpeg->ToStringView(), Decode(5));
}

TEST_F(StillServiceTest, GivesOutTheLastPictureAgainRatherThanAnOlderKeyFrame) {
    StillService service(oneWorker);
    PublishVideo(5);
    EXPECT_TRUE(test::Eventually([&] {
        PublishAgain(0ms);
        auto const newest = Request(service).get();
        return newest.jpeg && RequestWhileOthersWait(service).jpeg == newest.jpeg;
    }));
}

TEST_F(StillServiceTest, ReportsNoFrameWithoutVideo) {
    StillService service;
    EXPECT_EQ(Request(service).get().error, Error::NoFrame);
}

TEST_F(StillServiceTest, ReportsNoFrameWhenTheNewestIsTooOld) {
    StillService service;
    SetFormat();
    Publish(true, 10, 2001ms);
    EXPECT_EQ(Request(service).get().error, Error::NoFrame);
}

TEST_F(StillServiceTest, ReportsAFailureWhenDecodingFails) {
    StillService service(patient);
    SetFormat();
    Snapshot snapshot;
    WaitUntilInTime([&] {
        Publish(true);
        return snapshot = Request(service).get();
    });
    EXPECT_EQ(snapshot.error, Error::Failed);
    EXPECT_NE(snapshot.detail, "");
}

TEST_F(StillServiceTest, GivesUpWhenDecodingTakesTooLong) {
    StillService service({.patience = 60s, .decodingTime = 0ms});
    Snapshot snapshot;
    WaitUntilInTime([&] {
        PublishVideo(2);
        return snapshot = Request(service).get();
    });
    EXPECT_EQ(snapshot.error, Error::Failed);
}

TEST_F(StillServiceTest, RefusesRequestsWhenTheQueueIsFull) {
    StillService service({.workers = 0, .waiting = 3, .patience = 1h});
    std::vector<std::future<Snapshot>> waiting;
    for (int count = 0; count < 3; ++count) waiting.push_back(Request(service));
    EXPECT_EQ(Request(service).get().error, Error::Busy);
    EXPECT_EQ(waiting.front().wait_for(0s), std::future_status::timeout);
}

TEST_F(StillServiceTest, ReportsBusyInTimeWithoutAFreeWorker) {
    StillService service(nobodyWorks);
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Request(service).get().error, Error::Busy);
        EXPECT_EQ(Request(service).get().error, Error::Busy);
    }
}

TEST_F(StillServiceTest, AnswersWaitingRequestsOnStop) {
    StillService service({.workers = 0, .patience = 1h});
    auto waiting = Request(service);
    service.Stop();
    service.Stop();
    EXPECT_EQ(waiting.get().error, Error::Stopped);
    EXPECT_EQ(Request(service).get().error, Error::Stopped);
}

} // namespace
} // namespace zarn::host::video
