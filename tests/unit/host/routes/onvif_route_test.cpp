#include "host/access/digest_parameters.h"
#include "host/routes/onvif_route.h"
#include "support/test_request.h"
#include "support/thread_failure.h"
#include "web/ask.h"

#include <zarn/authentication/engine.h>
#include <zarn/job/condition_variable.h>
#include <zarn/job/dynamic_thread_pool.h>

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <mutex>
#include <stdexcept>
#include <system_error>

namespace zarn::host::routes {
namespace {

using namespace std::chrono_literals;
using zarn::web::response::MakeComplete;
using zarn::web::response::Pending;
using zarn::web::response::State;
using Method = test::TestRequest::Method;
using web::Reply;
using web::Status;

/// A module whose response is set by the test.
class Module final : public zarn::web::Service {
public:
    Response Post(std::shared_ptr<zarn::web::Request> /*request*/) override {
        ++requests;
        return script();
    }

    std::function<Response()> script = [] { return MakeComplete(Status::Ok, {}, "module"); };
    int requests = 0;
};

/// Whether a job has run, and the response that is complete from then on.
struct Work {
    std::atomic<bool> isDone = false;
    std::atomic<int> questions = 0;

    Reply Ask() {
        ++questions;
        if (!isDone) return {Status::Provisional, {}, {State::NotReady, {}}};
        return {Status::Accepted, {}, {State::Complete, {}}};
    }

    std::shared_ptr<Pending> MakeResponse() {
        return std::make_shared<Pending>(
            Status::Provisional, [this] { return Ask(); }, 0ms);
    }
};

class OnvifRouteTest : public testing::Test {
protected:
    std::future<web::Answer> Send(std::string const& body, std::map<std::string, std::string> const& fields = {},
                                  Method method = Method::Post) {
        return web::Send(route, std::make_shared<test::TestRequest>(method, "/onvif/device_service", fields, body));
    }

    Status Ask(std::string const& body, std::map<std::string, std::string> const& fields = {},
               Method method = Method::Post) {
        return Send(body, fields, method).get().reply.GetStatus();
    }

    Module module;
    ZarnAuthenticationEngine engine;
    web::Challenges challenges;
    OnvifRoute route{module, web::Digest(engine, challenges)};
    job::DynamicThreadPool pool{1, 10s}; ///< destroyed first: what its jobs tell needs the rest
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
    module.script = [] {
        return MakeComplete(Status::Unauthorized, {{"WWW-Authenticate", "Digest nonce=\"1\""}}, "no");
    };
    auto const reply = Send("x").get().reply;
    EXPECT_EQ(reply.GetStatus(), Status::Unauthorized);
    EXPECT_EQ(reply.GetBody().at(0)->ToStringView(), "no");
    auto const challenge = ParseDigestParameters(reply.GetFields().at("WWW-Authenticate"));
    EXPECT_TRUE(challenges.Accept({.nonce = challenge->at("nonce"), .nc = "1", .cnonce = "c"}));
}

TEST_F(OnvifRouteTest, AsksAResponseOnceWhenTheJobsOfItsRequestHaveEnded) {
    Work work;
    std::promise<void> begin;
    module.script = [&] {
        pool.Post([] {});
        pool.Post([&] {
            begin.get_future().wait();
            work.isDone = true;
        });
        return work.MakeResponse();
    };
    auto answer = Send("x");
    EXPECT_EQ(answer.wait_for(0s), std::future_status::timeout);
    EXPECT_EQ(work.questions, 0);
    begin.set_value();
    EXPECT_EQ(answer.get().reply.GetStatus(), Status::Accepted);
    EXPECT_EQ(work.questions, 1);
}

TEST_F(OnvifRouteTest, AsksAResponseAlsoWhenItsJobEndsBeforeTheModuleReturns) {
    Work work;
    module.script = [&] {
        pool.Post([&] { work.isDone = true; });
        pool.Stop();
        return work.MakeResponse();
    };
    EXPECT_EQ(Ask("x"), Status::Accepted);
    EXPECT_EQ(work.questions, 1);
}

TEST_F(OnvifRouteTest, Answers500WhenAResponseIsNotCompleteAtTheEndOfItsJob) {
    Work work;
    module.script = [&] {
        pool.Post([] {});
        return work.MakeResponse();
    };
    EXPECT_EQ(Ask("x"), Status::InternalServerError);
}

TEST_F(OnvifRouteTest, Answers500WhenAResponseThrows) {
    module.script = [] {
        return std::make_shared<Pending>(
            Status::Provisional, []() -> Reply { throw std::future_error(std::future_errc::broken_promise); }, 0ms);
    };
    EXPECT_EQ(Ask("x"), Status::InternalServerError);
}

TEST_F(OnvifRouteTest, Answers503WhenAJobIsDroppedForWantOfAThread) {
    job::DynamicThreadPool scarce(0, 10s, 1);
    std::mutex mutex;
    job::ConditionVariable opened;
    bool isOpen = false;
    std::promise<void> running;
    std::promise<void> begin;
    scarce.Post([&] {
        running.set_value();
        begin.get_future().wait();
        test::ThreadFailure const failure;
        std::unique_lock lock(mutex);
        while (!isOpen) opened.WaitUntil(lock, std::chrono::steady_clock::time_point::max());
    });
    running.get_future().wait();
    Work work;
    module.script = [&] {
        scarce.Post([&] { work.isDone = true; });
        return work.MakeResponse();
    };
    auto answer = Send("x");
    begin.set_value(); // the first job waits, and no thread can be started for the second
    auto const reply = answer.get().reply;
    EXPECT_EQ(reply.GetStatus(), Status::ServiceUnavailable);
    EXPECT_TRUE(reply.GetFields().contains("Retry-After"));
    {
        std::lock_guard const lock(mutex);
        isOpen = true;
    }
    opened.NotifyAll();
    scarce.Stop();
}

TEST_F(OnvifRouteTest, LetsTheCallerKnowThatTheModuleCannotStart) {
    module.script = []() -> Module::Response {
        throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    };
    EXPECT_THROW(Send("x"), std::system_error);
}

TEST_F(OnvifRouteTest, Answers503OnceStopped) {
    route.Stop();
    EXPECT_EQ(Ask("<x/>"), Status::ServiceUnavailable);
    route.Stop();
    EXPECT_EQ(module.requests, 0);
}

} // namespace
} // namespace zarn::host::routes
