#include "host/web/handler.h"
#include "support/test_request.h"
#include "web/ask.h"

#include <zarn/logging/capture.h>

#include <gmock/gmock.h>

#include <chrono>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace zarn::host::web {
namespace {

using namespace std::chrono_literals;
using Method = Handler::Method;

/// Answers GET and POST with the method's name.
class Named final : public Handler {
public:
    Named() : Handler({Method::Get, Method::Post}) {}

private:
    void Serve(RequestPtr request, Done done) override {
        done(MakeTextReply(Status::Ok, std::string(ToString(request->GetMethod()))));
    }
};

Reply AskNamed(Method method) {
    Named handler;
    return Ask(handler, std::make_shared<test::TestRequest>(method, "/"));
}

TEST(Handler, ServesTheMethodsThatItAllows) {
    EXPECT_EQ(AskNamed(Method::Get).GetBody().at(0)->ToStringView(), "GET\n");
    EXPECT_EQ(AskNamed(Method::Post).GetBody().at(0)->ToStringView(), "POST\n");
}

TEST(Handler, Answers405ToOtherMethods) {
    for (auto const method :
         {Method::Head, Method::Put, Method::Delete, Method::Connect, Method::Trace, Method::Patch}) {
        auto const reply = AskNamed(method);
        EXPECT_EQ(reply.GetStatus(), Status::MethodNotAllowed);
        EXPECT_EQ(reply.GetFields().at("Allow"), "GET, POST, OPTIONS");
        EXPECT_TRUE(reply.GetBody().empty());
    }
}

TEST(Handler, AnswersOptionsWithTheMethods) {
    auto const reply = AskNamed(Method::Options);
    EXPECT_EQ(reply.GetStatus(), Status::NoContent);
    EXPECT_EQ(reply.GetFields().at("Allow"), "GET, POST, OPTIONS");
}

/// The reply that Deliver makes of an answer.
Status GetDelivered(std::function<Answer()> const& make) {
    Status status{};
    Deliver([&status](Answer const& answer) { status = answer.reply.GetStatus(); }, make);
    return status;
}

TEST(Deliver, HandsTheAnswerOver) {
    EXPECT_EQ(GetDelivered([] { return MakeTextReply(Status::Conflict, "No."); }), Status::Conflict);
}

TEST(Deliver, Answers500WhenNoAnswerCanBeMade) {
    logging::Capture const log;
    EXPECT_EQ(GetDelivered([]() -> Answer { throw std::runtime_error("no way"); }), Status::InternalServerError);
    EXPECT_TRUE(log.Contains("A request ended without an answer: no way"));
    EXPECT_EQ(GetDelivered([]() -> Answer { throw 1; }), Status::InternalServerError);
}

TEST(Deliver, LogsThatAnAnswerIsLost) {
    logging::Capture const log;
    Deliver([](Answer const&) { throw std::bad_alloc(); }, [] { return MakeTextReply(Status::Ok, "lost"); });
    EXPECT_TRUE(log.Contains("An answer could not be delivered: std::bad_alloc"));
}

} // namespace
} // namespace zarn::host::web
