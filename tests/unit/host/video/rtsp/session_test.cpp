#include "host/video/rtsp/session.h"
#include "host/video/rtsp/transfer.h"
#include "host/video/rtsp/worker.h"

#include <gmock/gmock.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace zarn::host::video::rtsp {
namespace {

using namespace std::chrono_literals;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

/// A connection that sends everything at once.
class Wire final : public Outlet {
public:
    void Flush() override {
        if (isBlocked) return;
        for (; !track->queue.IsEmpty(); track->queue.RemoveFirst())
            units.push_back(track->queue.GetFirst().unit->number);
    }

    void SendControl(Track const&, std::string packet) override { control.push_back(std::move(packet)); }

    Track* track = nullptr;
    bool isBlocked = false;
    std::vector<std::uint64_t> units;
    std::vector<std::string> control;
};

/// A worker without a thread: its handlers run when the test says so.
class RtspSession : public testing::Test {
protected:
    RtspSession() {
        std::vector<Mount::Hubs> tracks{{std::make_shared<Hub>(worker.GetContext(), stream, 0)}};
        stream->Subscribe(tracks[0][0]);
        mount = std::make_shared<Mount const>("1", std::move(tracks));
        session = std::make_shared<Session>(worker, mount, "id", nullptr);
        worker.Add(session);
        MiniHandle<GstCaps> const caps(gst_caps_from_string("video/x-h264,width=128,height=96"));
        stream->SetFormat(*ReadFormat(caps.get()));
        worker.GetContext().poll();
        wire.track = &session->SetUp(0, 0, wire);
    }

    static void SetUpTestSuite() { InitializeGStreamer(); }

    void Publish(bool isKey) {
        auto unit = std::make_shared<AccessUnit>();
        unit->isKey = isKey;
        unit->packets = rtp::MakePackets(std::make_shared<rtp::MediaFormat>(), {"payload"});
        stream->Publish(std::move(unit));
        worker.GetContext().poll();
    }

    Status Ask(std::string const& method, std::string const& fields = {}, StreamPath const& path = {"1"}) {
        Request request{method, "rtsp://h/channels/1", "RTSP/1.0", {}, {}};
        if (!fields.empty()) request.fields.emplace_back("Range", fields);
        auto const status = session->Handle(request, path, "rtsp://h/channels/1").status;
        session->Proceed();
        return status;
    }

    bool IsKept() const { return worker.FindSession("id") != nullptr; }

    Worker worker{0};
    std::shared_ptr<Stream> stream = std::make_shared<Stream>(meta::data::VideoInfo());
    std::shared_ptr<Mount const> mount;
    std::shared_ptr<Session> session;
    Wire wire;
};

TEST_F(RtspSession, GetsNothingBeforeItPlays) {
    Publish(true);
    EXPECT_THAT(wire.units, IsEmpty());
    EXPECT_EQ(Ask("PAUSE"), Status::MethodNotValidInThisState);
}

TEST_F(RtspSession, BeginsWithTheNewestGroupAndAReport) {
    for (bool const isKey : {true, false, true, false}) Publish(isKey);
    EXPECT_EQ(Ask("PLAY"), Status::Ok);
    Publish(false);
    EXPECT_THAT(wire.units, testing::ElementsAre(3, 4, 5));
    EXPECT_THAT(wire.control, SizeIs(1));
    EXPECT_THAT(wire.control.front(), StartsWith("\x80\xC8"));
}

TEST_F(RtspSession, WaitsForAKeyFrameWhenThereIsNoVideo) {
    EXPECT_EQ(Ask("PLAY"), Status::Ok);
    for (bool const isKey : {false, true, false}) Publish(isKey);
    EXPECT_THAT(wire.units, testing::ElementsAre(2, 3));
}

TEST_F(RtspSession, PausesAndGoesOn) {
    Publish(true);
    Ask("PLAY");
    EXPECT_EQ(Ask("PAUSE"), Status::Ok);
    Publish(false);
    EXPECT_THAT(wire.units, testing::ElementsAre(1));
    EXPECT_EQ(Ask("PLAY"), Status::Ok);
    EXPECT_THAT(wire.units, testing::ElementsAre(1, 1, 2));
}

TEST_F(RtspSession, PlaysFromNowWhateverRangeIsAskedFor) {
    for (auto const* range : {"npt=5-10", "npt=now-", "clock=19961108T142300Z-", "smpte=10:12:33-"})
        EXPECT_EQ(Ask("PLAY", range), Status::Ok) << range;
    EXPECT_EQ(Ask("PLAY", "garbage"), Status::BadRequest);
}

TEST_F(RtspSession, IsControlledAsAWholeAtItsOwnPath) {
    EXPECT_EQ(Ask("PLAY", "", {"2"}), Status::NotFound);
    EXPECT_EQ(Ask("PLAY", "", {"1", 1}), Status::OnlyAggregateAllowed);
    EXPECT_EQ(Ask("TEARDOWN", "", {"1", 1}), Status::OnlyAggregateAllowed);
    EXPECT_TRUE(IsKept());
}

TEST_F(RtspSession, MayBeControlledAtThePathOfItsOnlyTrack) {
    EXPECT_EQ(Ask("PLAY", "", {"1", 0}), Status::Ok);
    EXPECT_EQ(Ask("TEARDOWN", "", {"1", 0}), Status::Ok);
    EXPECT_FALSE(IsKept());
}

TEST_F(RtspSession, IsNotControlledAtThePathOfOneOfTwoTracks) {
    auto const hub = std::make_shared<Hub>(worker.GetContext(), stream, 0);
    auto const two = std::make_shared<Mount const>("1", std::vector<Mount::Hubs>{{hub}, {hub}});
    session = std::make_shared<Session>(worker, two, "id2", nullptr);
    EXPECT_EQ(Ask("PLAY", "", {"1", 0}), Status::OnlyAggregateAllowed);
}

TEST_F(RtspSession, EndsWithTeardown) {
    Publish(true);
    Ask("PLAY");
    EXPECT_EQ(Ask("TEARDOWN"), Status::Ok);
    Publish(false);
    EXPECT_THAT(wire.units, testing::ElementsAre(1));
    EXPECT_FALSE(IsKept());
}

TEST_F(RtspSession, EndsWithoutASignOfLife) {
    bool hasExpired = false;
    session->SetOnExpiry([&] { hasExpired = true; });
    auto const begin = Session::Clock::now();
    session->Touch(begin + 10s);
    session->Sweep(begin + 10s + Session::Timeout);
    EXPECT_FALSE(hasExpired);
    session->Sweep(begin + 11s + Session::Timeout);
    EXPECT_TRUE(hasExpired);
    EXPECT_FALSE(IsKept());
}

TEST_F(RtspSession, ReportsRegularlyWhileItPlays) {
    auto const begin = Session::Clock::now();
    session->Sweep(begin + 1s);
    EXPECT_THAT(wire.control, IsEmpty());
    Publish(true);
    Ask("PLAY");
    for (auto const after : {2s, 6s, 8s}) session->Sweep(begin + after);
    EXPECT_THAT(wire.control, SizeIs(2)) << "one at the start, one more than 4 seconds later";
}

TEST_F(RtspSession, ReportsNoTimeBeforeTheFirstPicture) {
    Ask("PLAY");
    EXPECT_THAT(wire.control, IsEmpty());
    Publish(true);
    session->Sweep(Session::Clock::now());
    EXPECT_THAT(wire.control, SizeIs(1));
}

TEST_F(RtspSession, SaysGoodbyeBehindAPictureOfWhichAPartHasBeenSent) {
    wire.isBlocked = true;
    Publish(true);
    Ask("PLAY");
    auto const sent = wire.control.size();
    Transfer transfer(session->GetTracks().front(), Transfer::Framing::None);
    stream->End();
    worker.GetContext().poll();
    EXPECT_THAT(wire.control, SizeIs(sent));
    transfer.AdvancePackets(1);
    session->OnSent(*session->GetTracks().front());
    ASSERT_THAT(wire.control, SizeIs(sent + 1));
    EXPECT_THAT(wire.control.back(), testing::HasSubstr("\x81\xCB"));
}

TEST_F(RtspSession, SaysGoodbyeAtTheEndOfItsStream) {
    Publish(true);
    Ask("PLAY");
    auto const sent = wire.control.size();
    stream->End();
    worker.GetContext().poll();
    ASSERT_THAT(wire.control, SizeIs(sent + 1));
    EXPECT_THAT(wire.control.back(), testing::HasSubstr("\x81\xCB"));
    Publish(true);
    EXPECT_THAT(wire.units, testing::ElementsAre(1)) << "what comes next is for new viewers";
}

TEST_F(RtspSession, ClosesItsConnectionSoonAfterTheEndOfItsStream) {
    bool hasExpired = false;
    session->SetOnExpiry([&] { hasExpired = true; });
    stream->End();
    worker.GetContext().poll();
    EXPECT_TRUE(IsKept());
    for (auto const limit = Session::Clock::now() + 30s; !hasExpired && Session::Clock::now() < limit;)
        worker.GetContext().run_one_for(1s);
    EXPECT_TRUE(hasExpired);
    EXPECT_FALSE(IsKept());
}

TEST_F(RtspSession, SkipsToAKeyFrameAfterALoss) {
    Publish(true);
    Ask("PLAY");
    auto const lost = std::make_shared<AccessUnit>();
    lost->number = 100;
    session->Deliver(0, std::vector<AccessUnitPtr>{lost}, true);
    EXPECT_THAT(wire.units, testing::ElementsAre(1));
}

} // namespace
} // namespace zarn::host::video::rtsp
