#include "host/web/dispatcher.h"

#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace zarn::host::web {
namespace {

auto const Peer = boost::asio::ip::make_address("192.0.2.1");

/// A handler whose answer is set by the test.
class Scripted final : public Handler {
public:
    Scripted() : Handler({Method::Post}) {}

    std::function<void(Done)> script = [](Done const& done) { done(MakeTextReply(Status::Ok, "served")); };
    std::string segment; ///< of the last request's route

private:
    void Serve(RequestPtr request, Done done) override {
        segment = request->GetRouteSegment();
        script(std::move(done));
    }
};

class DispatcherTest : public testing::Test {
protected:
    std::future<Reply> Send(std::string const& authorization = {}, std::string const& target = "/onvif/a") {
        IncomingRequest::Message message(boost::beast::http::verb::post, target, 11);
        if (!authorization.empty()) message.set("Authorization", authorization);
        auto const promise = std::make_shared<std::promise<Reply>>();
        dispatcher.Handle(Peer, std::make_shared<IncomingRequest>(std::move(message)), limits,
                          [promise](Reply reply) { promise->set_value(std::move(reply)); });
        return promise->get_future();
    }

    Status Ask(std::string const& authorization = {}, std::string const& target = "/onvif/a") {
        return Send(authorization, target).get().GetStatus();
    }

    Admission admission;
    std::shared_ptr<Scripted> handler = std::make_shared<Scripted>();
    FailedLogins failedLogins{3};
    Dispatcher dispatcher{Router({{"/onvif/", handler}, {"/snapshot/*/latest.jpeg", handler}}), admission,
                          failedLogins};
    Limits limits{.exchanges = 2};
};

TEST_F(DispatcherTest, RoutesARequestByItsPath) {
    EXPECT_EQ(Ask(), Status::Ok);
    EXPECT_EQ(Ask({}, "/onvif/a?/other"), Status::Ok);
    EXPECT_EQ(Ask({}, "/other?/onvif/a"), Status::NotFound);
}

TEST_F(DispatcherTest, TellsTheHandlerWhatItsRouteMatched) {
    EXPECT_EQ(Ask({}, "/snapshot/gate-1/latest.jpeg?time=/2/"), Status::Ok);
    EXPECT_EQ(handler->segment, "gate-1");
    EXPECT_EQ(Ask(), Status::Ok);
    EXPECT_EQ(handler->segment, "");
}

TEST_F(DispatcherTest, Answers503WhenAThreadCannotBeStarted) {
    handler->script = [](auto const&) {
        throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    };
    auto const reply = Send().get();
    EXPECT_EQ(reply.GetStatus(), Status::ServiceUnavailable);
    EXPECT_TRUE(reply.GetFields().contains("Retry-After"));
    EXPECT_EQ(admission.GetExchanges(), 0U);
}

TEST_F(DispatcherTest, Answers500WhenAHandlerThrows) {
    handler->script = [](auto const&) { throw std::logic_error("a defect"); };
    EXPECT_EQ(Ask(), Status::InternalServerError);
}

TEST_F(DispatcherTest, AnswersOnceWhenTheHandlerAnswersTwice) {
    int answers = 0;
    handler->script = [](auto const& done) {
        done(MakeTextReply(Status::Accepted, "served"));
        done(MakeTextReply(Status::Ok, "again"));
    };
    IncomingRequest::Message message(boost::beast::http::verb::post, "/onvif/a", 11);
    dispatcher.Handle(Peer, std::make_shared<IncomingRequest>(std::move(message)), limits, [&](Reply const& reply) {
        ++answers;
        EXPECT_EQ(reply.GetStatus(), Status::Accepted);
    });
    EXPECT_EQ(answers, 1);
}

TEST_F(DispatcherTest, AnswersOnceWhenTheHandlerThrowsAfterItsAnswer) {
    handler->script = [](auto const& done) {
        done(MakeTextReply(Status::Accepted, "served"));
        throw std::logic_error("a defect");
    };
    EXPECT_EQ(Ask(), Status::Accepted);
}

TEST_F(DispatcherTest, CountsAnExchangeUntilItsAnswer) {
    std::vector<Handler::Done> waiting;
    handler->script = [&](auto const& done) { waiting.push_back(done); };
    auto first = Send();
    auto second = Send();
    EXPECT_EQ(admission.GetExchanges(), 2U);
    EXPECT_EQ(Ask(), Status::ServiceUnavailable);
    for (auto const& done : waiting) done(MakeTextReply(Status::Ok, "served"));
    EXPECT_EQ(first.get().GetStatus(), Status::Ok);
    EXPECT_EQ(second.get().GetStatus(), Status::Ok);
    EXPECT_EQ(admission.GetExchanges(), 0U);
}

TEST_F(DispatcherTest, CountsAnExchangeUntilItIsDropped) {
    auto reply = Send();
    handler->script = [](auto const&) {}; // as at the end of the server
    reply = Send();
    EXPECT_THROW(reply.get(), std::future_error);
    EXPECT_EQ(admission.GetExchanges(), 0U);
}

class GuessingTest : public DispatcherTest {
protected:
    GuessingTest() { Refuse(Login::Wrong); }

    void Refuse(Login login) {
        handler->script = [login](auto const& done) { done(Answer(MakeTextReply(Status::Unauthorized, "no"), login)); };
    }

    void Guess(int times) {
        for (int i = 0; i < times; ++i) EXPECT_EQ(Ask("Digest username=\"admin\""), Status::Unauthorized);
    }
};

TEST_F(GuessingTest, IsRefusedAfterTooManyWrongAnswers) {
    auto const begin = std::chrono::steady_clock::now();
    Guess(4);
    auto const reply = Send("Digest username=\"admin\"").get();
    auto const elapsed = std::chrono::ceil<std::chrono::seconds>(std::chrono::steady_clock::now() - begin).count();
    EXPECT_EQ(reply.GetStatus(), Status::TooManyRequests);
    EXPECT_THAT(std::stoi(reply.GetFields().at("Retry-After")),
                testing::AllOf(testing::Ge(60 - elapsed), testing::Le(60)));
}

TEST_F(GuessingTest, StillAllowsRequestsWithoutCredentials) {
    Guess(4);
    EXPECT_EQ(Ask(), Status::Unauthorized);
}

TEST_F(GuessingTest, CountsOnlyWrongLogins) {
    Refuse(Login::Irrelevant);
    Guess(10);
}

TEST_F(GuessingTest, ExcludesSuccessfulLogins) {
    handler->script = [](auto const& done) { done(MakeTextReply(Status::Ok, "served")); };
    for (int i = 0; i < 10; ++i) EXPECT_EQ(Ask("Digest username=\"admin\""), Status::Ok);
}

} // namespace
} // namespace zarn::host::web
