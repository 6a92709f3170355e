#include "host/routes/snapshot_route.h"
#include "host/web/reply.h"
#include "support/test_request.h"
#include "web/ask.h"

#include <zarn/authentication/engine.h>

#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <string>
#include <utility>
#include <vector>

namespace zarn::host::routes {
namespace {

using video::Snapshot;
using video::SnapshotError;
using namespace std::chrono_literals;
using Method = test::TestRequest::Method;
using web::Status;

class SnapshotRouteTest : public testing::Test {
protected:
    SnapshotRouteTest() { engine.SetEnabled(false); }

    std::future<web::Answer> Send(std::string const& id, Method method = Method::Get) {
        return web::Send(route, std::make_shared<test::TestRequest>(method, "/snapshot/" + id + "/latest.jpeg",
                                                                    std::map<std::string, std::string>(), "", id));
    }

    /// The reply to a request that is answered at once.
    web::Reply Ask(std::string const& id, Method method = Method::Get) { return Send(id, method).get().reply; }

    /// The reply to a request that receives this picture.
    web::Reply Deliver(Snapshot snapshot) {
        auto reply = Send("1");
        requests.back().second(std::move(snapshot));
        return reply.get().reply;
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
    auto const reply = Send("gate-1");
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests.front().first, "gate-1");
}

TEST_F(SnapshotRouteTest, AnswersWhenThePictureComes) {
    auto answer = Send("1");
    EXPECT_EQ(answer.wait_for(0s), std::future_status::timeout);
    requests.front().second({SnapshotError::None, "", std::make_shared<container::Buffer>("jpeg")});
    ASSERT_EQ(answer.wait_for(0s), std::future_status::ready);
    auto const reply = answer.get().reply;
    EXPECT_EQ(reply.GetStatus(), Status::Ok);
    EXPECT_EQ(reply.GetFields().at("Content-Type"), "image/jpeg");
    EXPECT_EQ(reply.GetBody().at(0)->ToStringView(), "jpeg");
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
    auto const reply = Send("1", Method::Head);
    EXPECT_EQ(requests.size(), 1U);
    EXPECT_EQ(Ask("1", Method::Post).GetStatus(), Status::MethodNotAllowed);
}

TEST_F(SnapshotRouteTest, RequiresCredentials) {
    engine.SetEnabled(true);
    EXPECT_EQ(Ask("1").GetStatus(), Status::Unauthorized);
    EXPECT_EQ(Ask("1", Method::Head).GetStatus(), Status::Unauthorized);
    EXPECT_TRUE(requests.empty());
}

} // namespace
} // namespace zarn::host::routes
