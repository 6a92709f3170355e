#include "host/routes/snapshot_route.h"
#include "host/web/reply.h"
#include "support/test_request.h"

#include <zarn/authentication/engine.h>

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace zarn::host::routes {
namespace {

using video::Snapshot;
using video::SnapshotError;
using zarn::web::response::State;
using Method = test::TestRequest::Method;
using web::Status;

class SnapshotRouteTest : public testing::Test {
protected:
    SnapshotRouteTest() { engine.SetEnabled(false); }

    std::shared_ptr<zarn::web::response::Pending> Ask(std::string const& id, Method method = Method::Get) {
        return route.Process(std::make_shared<test::TestRequest>(method, "/snapshot/" + id + "/latest.jpeg",
                                                                 std::map<std::string, std::string>(), "", id));
    }

    /// The answer to a request that receives this picture.
    zarn::web::response::Pending::Data Deliver(Snapshot snapshot) {
        auto const pending = Ask("1");
        requests.back().second(std::move(snapshot));
        return pending->GetData();
    }

    ZarnAuthenticationEngine engine;
    std::vector<std::pair<std::string, std::function<void(Snapshot)>>> requests;
    web::Challenges challenges;
    SnapshotRoute route{web::Digest(engine, challenges),
                        [this](std::string_view id, std::function<void(Snapshot)> done) {
                            requests.emplace_back(id, std::move(done));
                        }};
};

TEST_F(SnapshotRouteTest, AsksForThePictureOfTheChannelThatTheRouteNames) {
    Ask("gate-1");
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests.front().first, "gate-1");
}

TEST_F(SnapshotRouteTest, IsPendingUntilThePictureComes) {
    auto const pending = Ask("1");
    EXPECT_EQ(pending->GetData().GetState(), State::NotReady);
    requests.front().second({SnapshotError::None, "", std::make_shared<container::Buffer>("jpeg")});
    auto const data = pending->GetData();
    EXPECT_EQ(data.GetState(), State::Complete);
    EXPECT_EQ(data.GetStatus(), Status::Ok);
    EXPECT_EQ(data.GetFields().at("Content-Type"), "image/jpeg");
    EXPECT_EQ(data.GetBody().at(0)->ToStringView(), "jpeg");
}

TEST_F(SnapshotRouteTest, Answers404ForAnUnknownChannel) {
    EXPECT_EQ(Deliver({SnapshotError::NoSuchChannel, "", nullptr}).GetStatus(), Status::NotFound);
}

TEST_F(SnapshotRouteTest, Answers503WithoutAPicture) {
    for (auto const error :
         {SnapshotError::NoFrame, SnapshotError::Busy, SnapshotError::Failed, SnapshotError::Stopped}) {
        auto const data = Deliver({error, "the reason", nullptr});
        EXPECT_EQ(data.GetStatus(), Status::ServiceUnavailable);
        EXPECT_TRUE(data.GetFields().contains("Retry-After"));
        EXPECT_EQ(data.GetBody().at(0)->ToStringView(), "the reason\n");
    }
}

TEST_F(SnapshotRouteTest, AnswersHeadAndRefusesOtherMethods) {
    Ask("1", Method::Head);
    EXPECT_EQ(requests.size(), 1U);
    EXPECT_EQ(Ask("1", Method::Post)->GetData().GetStatus(), Status::MethodNotAllowed);
}

TEST_F(SnapshotRouteTest, RequiresCredentials) {
    engine.SetEnabled(true);
    EXPECT_EQ(Ask("1")->GetData().GetStatus(), Status::Unauthorized);
    EXPECT_EQ(Ask("1", Method::Head)->GetData().GetStatus(), Status::Unauthorized);
    EXPECT_TRUE(requests.empty());
}

TEST_F(SnapshotRouteTest, IgnoresAPictureForADroppedRequest) {
    Ask("1").reset();
    EXPECT_NO_THROW(requests.front().second({SnapshotError::None, "", std::make_shared<container::Buffer>("jpeg")}));
}

} // namespace
} // namespace zarn::host::routes
