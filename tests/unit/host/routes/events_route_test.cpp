#include "host/routes/events_route.h"
#include "support/test_request.h"
#include "web/ask.h"

#include <zarn/authentication/engine.h>
#include <zarn/logging/capture.h>

#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <map>
#include <new>
#include <string>
#include <vector>

namespace zarn::host::routes {
namespace {

using protocol::network::http::response::Status;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Method = test::TestRequest::Method;

class EventsRouteTest : public testing::Test {
protected:
    EventsRouteTest() { engine.SetEnabled(false); }

    web::Reply Send(std::string body, std::map<std::string, std::string> fields = {}, Method method = Method::Post) {
        return web::Ask(route,
                        std::make_shared<test::TestRequest>(method, "/api/events", std::move(fields), std::move(body)));
    }

    static std::string GetBody(web::Reply const& data) {
        return data.GetBody().empty() ? std::string() : std::string(data.GetBody().front()->ToStringView());
    }

    ZarnAuthenticationEngine engine;
    std::vector<std::string> taken;
    web::Challenges challenges;
    EventsRoute route{web::Digest(engine, challenges),
                      [this](auto const& event) { taken.push_back(event->GetType()); }};
};

TEST_F(EventsRouteTest, AcceptsAnEvent) {
    auto const answer = Send(R"({"type": "presence"})", {{"content-type", "application/json"}});
    EXPECT_EQ(answer.GetStatus(), Status::Accepted);
    EXPECT_EQ(GetBody(answer), "{\"taken\":1}\n");
    EXPECT_EQ(answer.GetFields().at("Content-Type"), "application/json");
    EXPECT_THAT(taken, ElementsAre("presence"));
}

TEST_F(EventsRouteTest, PublishesAListInOrderBeforeAnswering) {
    EXPECT_EQ(GetBody(Send(R"([{"type": "a"}, {"type": "b"}, {"type": "c"}])")), "{\"taken\":3}\n");
    EXPECT_THAT(taken, ElementsAre("a", "b", "c"));
}

TEST_F(EventsRouteTest, DoesNotBlockWhileEventsArePublished) {
    std::promise<void> taking;
    EventsRoute slow(web::Digest(engine, challenges), [&](auto const&) { taking.get_future().wait(); });
    auto answer =
        web::Send(slow, std::make_shared<test::TestRequest>(Method::Post, "/api/events",
                                                            std::map<std::string, std::string>(), R"({"type": "a"})"));
    EXPECT_EQ(answer.wait_for(0ms), std::future_status::timeout);
    taking.set_value();
    auto const reply = answer.get().reply;
    EXPECT_EQ(reply.GetStatus(), Status::Accepted);
    EXPECT_EQ(GetBody(reply), "{\"taken\":1}\n");
}

TEST_F(EventsRouteTest, Answers500WhenEventsCannotBePublished) {
    logging::Capture const log;
    EventsRoute failing(web::Digest(engine, challenges), [](auto const&) { throw std::bad_alloc(); });
    auto const reply =
        web::Ask(failing, std::make_shared<test::TestRequest>(
                              Method::Post, "/api/events", std::map<std::string, std::string>(), R"({"type": "a"})"));
    EXPECT_EQ(reply.GetStatus(), Status::InternalServerError);
    EXPECT_TRUE(log.Contains("bad_alloc"));
}

TEST_F(EventsRouteTest, RefusesAWholeListWithAnInvalidEvent) {
    auto const answer = Send(R"([{"type": "a"}, {"type": "b", "count": "many"}])");
    EXPECT_EQ(answer.GetStatus(), Status::BadRequest);
    EXPECT_EQ(GetBody(answer), R"({"error":"event 2: count: \"many\" is not a number from -2147483648 to 2147483647"})"
                               "\n");
    EXPECT_THAT(taken, IsEmpty());
}

TEST_F(EventsRouteTest, RefusesABodyThatIsNotJson) {
    auto const answer = Send("");
    EXPECT_EQ(answer.GetStatus(), Status::BadRequest);
    EXPECT_THAT(GetBody(answer), HasSubstr("this is not JSON"));
}

TEST_F(EventsRouteTest, AcceptsEveryJsonMediaType) {
    for (auto const* const type : {"application/json", "application/json; charset=utf-8", "Application/JSON ;a=b",
                                   "application/vnd.example+json", ""}) {
        EXPECT_EQ(Send(R"({"type": "a"})", {{"Content-Type", type}}).GetStatus(), Status::Accepted) << type;
    }
}

TEST_F(EventsRouteTest, RefusesOtherMediaTypes) {
    for (auto const* const type : {"application/x-www-form-urlencoded", "text/plain", "application/jsonx", "json"}) {
        auto const answer = Send(R"({"type": "a"})", {{"Content-Type", type}});
        EXPECT_EQ(answer.GetStatus(), Status::UnsupportedMediaType) << type;
        EXPECT_EQ(GetBody(answer), "{\"error\":\"Content-Type: events come as application/json\"}\n");
    }
    EXPECT_THAT(taken, IsEmpty());
}

TEST_F(EventsRouteTest, RefusesEventsWithoutCredentials) {
    engine.SetEnabled(true);
    auto const answer = Send(R"({"type": "a"})");
    EXPECT_EQ(answer.GetStatus(), Status::Unauthorized);
    EXPECT_THAT(answer.GetFields().at("WWW-Authenticate"), HasSubstr("Digest"));
    EXPECT_THAT(taken, IsEmpty());
}

TEST_F(EventsRouteTest, RefusesOtherMethods) {
    auto const answer = Send({}, {}, Method::Get);
    EXPECT_EQ(answer.GetStatus(), Status::MethodNotAllowed);
    EXPECT_THAT(answer.GetFields().at("Allow"), HasSubstr("POST"));
}

} // namespace
} // namespace zarn::host::routes
