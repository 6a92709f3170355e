#include "host/video/rtsp/session.h"
#include "host/video/rtsp/transfer.h"
#include "unit/host/video/rtsp/served_stream.h"

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

class RtspSession : public ServedStreamTest {
protected:
    RtspSession() {
        SetFormat();
        wire.track = &session->SetUp(0, 0, wire);
    }

    void Publish(bool isKey) {
        stream->Publish(MakeUnit(isKey));
        RunHandlers();
    }

    void EndStream() {
        stream->End();
        RunHandlers();
    }

    Status Ask(std::string const& method, std::string const& fields = {}, StreamPath const& path = {"1"}) {
        Request request{method, "rtsp://h/channels/1", "RTSP/1.0", {}, {}};
        if (!fields.empty()) request.fields.emplace_back("Range", fields);
        auto const status = session->Handle(request, path, "rtsp://h/channels/1").status;
        session->Proceed();
        return status;
    }

    bool IsKept() const { return worker.FindSession("id") != nullptr; }

    std::shared_ptr<Session> session = MakeSession();
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
    session->Sweep(Session::Clock::now());
    EXPECT_THAT(wire.control, IsEmpty());
    Publish(true);
    Ask("PLAY");
    EXPECT_THAT(wire.control, SizeIs(1));
    auto const due = Session::Clock::now() + 4s;
    for (auto const time : {due, due + 3999ms, due + 4s}) session->Sweep(time);
    EXPECT_THAT(wire.control, SizeIs(3)) << "none less than 4 seconds after the one before";
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
    EndStream();
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
    EndStream();
    ASSERT_THAT(wire.control, SizeIs(sent + 1));
    EXPECT_THAT(wire.control.back(), testing::HasSubstr("\x81\xCB"));
    Publish(true);
    EXPECT_THAT(wire.units, testing::ElementsAre(1)) << "what comes next is for new viewers";
}

TEST_F(RtspSession, ClosesItsConnectionSoonAfterTheEndOfItsStream) {
    bool hasExpired = false;
    session->SetOnExpiry([&] { hasExpired = true; });
    EndStream();
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
