#include "host/web/onvif_route.h"
#include "host/web/reply.h"
#include "web/fake_request.h"

#include <zarn/authentication/engine.h>

#include <gmock/gmock.h>

namespace zarn::host::web {
namespace {

using Method = FakeRequest::Method;
using Status = Reply::Status;

class Module final : public zarn::web::Service {
public:
    Response Post(std::shared_ptr<zarn::web::Request> /*request*/) override {
        ++requests;
        return MakeTextResponse(Status::Ok, "module");
    }

    int requests = 0;
};

class OnvifRouteTest : public testing::Test {
protected:
    Status Ask(std::string const& body, std::map<std::string, std::string> const& fields = {},
               Method method = Method::Post) {
        return route.Process(std::make_shared<FakeRequest>(method, "/onvif/device_service", fields, body))
            ->GetData()
            .GetStatus();
    }

    Module module;
    ZarnAuthenticationEngine engine;
    OnvifRoute route{module, engine};
};

TEST_F(OnvifRouteTest, HandsRequestsToTheModule) {
    EXPECT_EQ(Ask("<x/>"), Status::Ok);
    EXPECT_EQ(module.requests, 1);
}

TEST_F(OnvifRouteTest, RefusesOtherMethods) { EXPECT_EQ(Ask("", {}, Method::Get), Status::MethodNotAllowed); }

TEST_F(OnvifRouteTest, ChallengesAClientThatHoldsItsBodyBack) {
    EXPECT_EQ(Ask(""), Status::Unauthorized);
    EXPECT_EQ(module.requests, 0);
}

TEST_F(OnvifRouteTest, LeavesAnEmptyBodyToTheModuleWhenNobodyHasToLogIn) {
    engine.SetEnabled(false);
    EXPECT_EQ(Ask(""), Status::Ok);
}

TEST_F(OnvifRouteTest, LeavesAnEmptyBodyWithCredentialsToTheModule) {
    EXPECT_EQ(Ask("", {{"Authorization", "Digest username=\"admin\""}}), Status::Ok);
}

TEST_F(OnvifRouteTest, AnswersForTheModuleOnceItIsStopped) {
    route.Stop();
    EXPECT_EQ(Ask("<x/>"), Status::ServiceUnavailable);
    route.Stop();
    EXPECT_EQ(module.requests, 0);
}

} // namespace
} // namespace zarn::host::web
