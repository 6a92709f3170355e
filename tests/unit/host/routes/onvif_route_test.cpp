#include "host/access/digest_parameters.h"
#include "host/routes/onvif_route.h"
#include "host/web/reply.h"
#include "support/test_request.h"

#include <zarn/authentication/engine.h>

#include <gmock/gmock.h>

namespace zarn::host::routes {
namespace {

using namespace std::chrono_literals;
using zarn::web::response::Pending;
using zarn::web::response::State;
using Method = test::TestRequest::Method;
using web::MakeTextResponse;
using web::Status;

class Module final : public zarn::web::Service {
public:
    Response Post(std::shared_ptr<zarn::web::Request> /*request*/) override {
        ++requests;
        return answer;
    }

    Response answer = MakeTextResponse(Status::Ok, "module");
    int requests = 0;
};

class OnvifRouteTest : public testing::Test {
protected:
    Status Ask(std::string const& body, std::map<std::string, std::string> const& fields = {},
               Method method = Method::Post) {
        return route.Process(std::make_shared<test::TestRequest>(method, "/onvif/device_service", fields, body))
            ->GetData()
            .GetStatus();
    }

    Module module;
    ZarnAuthenticationEngine engine;
    web::Challenges challenges;
    OnvifRoute route{module, web::Digest(engine, challenges)};
};

TEST_F(OnvifRouteTest, HandsRequestsToTheModule) {
    EXPECT_EQ(Ask("<x/>"), Status::Ok);
    EXPECT_EQ(module.requests, 1);
}

TEST_F(OnvifRouteTest, RefusesOtherMethods) { EXPECT_EQ(Ask("", {}, Method::Get), Status::MethodNotAllowed); }

TEST_F(OnvifRouteTest, ChallengesAnEmptyBodyWithoutCredentials) {
    EXPECT_EQ(Ask(""), Status::Unauthorized);
    EXPECT_EQ(module.requests, 0);
}

TEST_F(OnvifRouteTest, LeavesAnEmptyBodyToTheModuleWhenAuthenticationIsOff) {
    engine.SetEnabled(false);
    EXPECT_EQ(Ask(""), Status::Ok);
}

TEST_F(OnvifRouteTest, LeavesAnEmptyBodyWithCredentialsToTheModule) {
    EXPECT_EQ(Ask("", {{"Authorization", "Digest username=\"admin\""}}), Status::Ok);
}

TEST_F(OnvifRouteTest, ReplacesTheModulesChallengeWithTheHosts) {
    module.answer = MakeTextResponse(Status::Unauthorized, "no", {{"WWW-Authenticate", "Digest nonce=\"1\""}});
    auto const data = route
                          .Process(std::make_shared<test::TestRequest>(Method::Post, "/onvif/a",
                                                                       std::map<std::string, std::string>(), "x"))
                          ->GetData();
    EXPECT_EQ(data.GetStatus(), Status::Unauthorized);
    EXPECT_EQ(data.GetBody().at(0)->ToStringView(), "no\n");
    auto const challenge = ParseDigestParameters(data.GetFields().at("WWW-Authenticate"));
    EXPECT_TRUE(challenges.Accept({.nonce = challenge->at("nonce"), .nc = "1", .cnonce = "c"}));
}

TEST_F(OnvifRouteTest, PollsTheModuleUntilItsResponseIsComplete) {
    bool ready = false;
    module.answer = std::make_shared<Pending>(
        Status::Provisional,
        [&]() -> Pending::Data {
            if (!ready) return {Status::Provisional, {}, {State::NotReady, {}}};
            return {Status::Ok, {}, {State::Complete, {}}};
        },
        7ms);
    auto const pending = route.Process(
        std::make_shared<test::TestRequest>(Method::Post, "/onvif/a", std::map<std::string, std::string>(), "x"));
    EXPECT_EQ(pending->GetTimeout(), 7ms);
    EXPECT_EQ(pending->GetStatus(), Status::Provisional);
    EXPECT_EQ(pending->GetData().GetState(), State::NotReady);
    ready = true;
    EXPECT_EQ(pending->GetData().GetStatus(), Status::Ok);
}

TEST_F(OnvifRouteTest, Answers503OnceStopped) {
    route.Stop();
    EXPECT_EQ(Ask("<x/>"), Status::ServiceUnavailable);
    route.Stop();
    EXPECT_EQ(module.requests, 0);
}

} // namespace
} // namespace zarn::host::routes
