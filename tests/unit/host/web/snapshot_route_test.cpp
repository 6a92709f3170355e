#include "host/web/reply.h"
#include "host/web/snapshot_route.h"
#include "web/fake_request.h"

#include <zarn/authentication/engine.h>

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace zarn::host::web {
namespace {

using video::Snapshot;
using video::SnapshotError;
using zarn::web::response::State;
using Method = FakeRequest::Method;
using Status = Reply::Status;

class SnapshotRouteTest : public testing::Test {
protected:
    SnapshotRouteTest() { engine.SetEnabled(false); }

    std::shared_ptr<zarn::web::response::Pending> Ask(std::string const& target, Method method = Method::Get) {
        return route.Process(std::make_shared<FakeRequest>(method, target));
    }

    /// The answer to a request whose picture is this.
    zarn::web::response::Pending::Data Deliver(Snapshot snapshot) {
        auto const pending = Ask("/snapshot/1/latest.jpeg");
        requests.back().second(std::move(snapshot));
        return pending->GetData();
    }

    ZarnAuthenticationEngine engine;
    std::vector<std::pair<std::string, std::function<void(Snapshot)>>> requests;
    Challenges challenges;
    SnapshotRoute route{Digest(engine, challenges), [this](std::string_view id, std::function<void(Snapshot)> done) {
                            requests.emplace_back(id, std::move(done));
                        }};
};

TEST_F(SnapshotRouteTest, AsksForThePictureOfTheChannelInThePath) {
    Ask("/snapshot/gate-1/latest.jpeg?time=/2/");
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests.front().first, "gate-1");
}

TEST_F(SnapshotRouteTest, IsPendingUntilThePictureComes) {
    auto const pending = Ask("/snapshot/1/latest.jpeg");
    EXPECT_EQ(pending->GetData().GetState(), State::NotReady);
    requests.front().second({SnapshotError::None, "", std::make_shared<container::Buffer>("jpeg")});
    auto const data = pending->GetData();
    EXPECT_EQ(data.GetState(), State::Complete);
    EXPECT_EQ(data.GetStatus(), Status::Ok);
    EXPECT_EQ(data.GetFields().at("Content-Type"), "image/jpeg");
    EXPECT_EQ(data.GetBody().at(0)->ToStringView(), "jpeg");
}

TEST_F(SnapshotRouteTest, SaysThatThereIsNoSuchChannel) {
    EXPECT_EQ(Deliver({SnapshotError::NoSuchChannel, "", nullptr}).GetStatus(), Status::NotFound);
}

TEST_F(SnapshotRouteTest, SaysThatThereIsNoPictureNow) {
    for (auto const error :
         {SnapshotError::NoFrame, SnapshotError::Busy, SnapshotError::Failed, SnapshotError::Stopped}) {
        auto const data = Deliver({error, "the reason", nullptr});
        EXPECT_EQ(data.GetStatus(), Status::ServiceUnavailable);
        EXPECT_TRUE(data.GetFields().contains("Retry-After"));
        EXPECT_EQ(data.GetBody().at(0)->ToStringView(), "the reason\n");
    }
}

TEST_F(SnapshotRouteTest, AnswersHeadAndRefusesOtherMethods) {
    Ask("/snapshot/1/latest.jpeg", Method::Head);
    EXPECT_EQ(requests.size(), 1U);
    EXPECT_EQ(Ask("/snapshot/1/latest.jpeg", Method::Post)->GetData().GetStatus(), Status::MethodNotAllowed);
}

TEST_F(SnapshotRouteTest, ShowsNothingToWhoHasNotLoggedIn) {
    engine.SetEnabled(true);
    EXPECT_EQ(Ask("/snapshot/1/latest.jpeg")->GetData().GetStatus(), Status::Unauthorized);
    EXPECT_EQ(Ask("/snapshot/1/latest.jpeg", Method::Head)->GetData().GetStatus(), Status::Unauthorized);
    EXPECT_TRUE(requests.empty());
}

TEST_F(SnapshotRouteTest, DoesNotMindAPictureForWhichNobodyWaits) {
    Ask("/snapshot/1/latest.jpeg").reset();
    EXPECT_NO_THROW(requests.front().second({SnapshotError::None, "", std::make_shared<container::Buffer>("jpeg")}));
}

} // namespace
} // namespace zarn::host::web
