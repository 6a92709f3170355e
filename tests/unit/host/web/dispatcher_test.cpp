#include "host/web/dispatcher.h"
#include "web/io_thread.h"

#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <stdexcept>
#include <string>
#include <system_error>

namespace zarn::host::web {
namespace {

using namespace std::chrono_literals;
using zarn::web::response::Pending;
using zarn::web::response::State;

auto const Peer = boost::asio::ip::make_address("192.0.2.1");

/// A service whose answer is set by the test.
class Scripted final : public zarn::web::Service {
public:
    std::function<Response()> script = [] { return MakeTextResponse(Status::Ok, "served"); };

    Response Post(std::shared_ptr<zarn::web::Request> request) override {
        segment = request->GetRouteSegment();
        return script();
    }

    std::string segment; ///< of the last request's route
};

class DispatcherTest : public testing::Test {
protected:
    ~DispatcherTest() override { io.Stop(); }

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

    IoThread io;
    Admission admission;
    PendingTicker ticker{io.GetContext()};
    std::shared_ptr<Scripted> service = std::make_shared<Scripted>();
    FailedLogins failedLogins{3};
    Dispatcher dispatcher{Router({{"/onvif/", service}, {"/snapshot/*/latest.jpeg", service}}), ticker, admission,
                          failedLogins};
    Limits limits{.exchanges = 2};
};

TEST_F(DispatcherTest, RoutesARequestByItsPath) {
    EXPECT_EQ(Ask(), Status::Ok);
    EXPECT_EQ(Ask({}, "/onvif/a?/other"), Status::Ok);
    EXPECT_EQ(Ask({}, "/other?/onvif/a"), Status::NotFound);
}

TEST_F(DispatcherTest, TellsTheServiceWhatItsRouteMatched) {
    EXPECT_EQ(Ask({}, "/snapshot/gate-1/latest.jpeg?time=/2/"), Status::Ok);
    EXPECT_EQ(service->segment, "gate-1");
    EXPECT_EQ(Ask(), Status::Ok);
    EXPECT_EQ(service->segment, "");
}

TEST_F(DispatcherTest, Answers503WhenAThreadCannotBeStarted) {
    service->script = []() -> zarn::web::Service::Response {
        throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    };
    auto const reply = Send().get();
    EXPECT_EQ(reply.GetStatus(), Status::ServiceUnavailable);
    EXPECT_TRUE(reply.GetFields().contains("Retry-After"));
    EXPECT_EQ(admission.GetExchanges(), 0U);
}

TEST_F(DispatcherTest, Answers500WhenAServiceThrows) {
    service->script = []() -> zarn::web::Service::Response { throw std::logic_error("a defect"); };
    EXPECT_EQ(Ask(), Status::InternalServerError);
}

TEST_F(DispatcherTest, CountsAnExchangeUntilItsResponseIsComplete) {
    auto const ready = std::make_shared<std::atomic<bool>>(false);
    service->script = [ready] {
        return std::make_shared<Pending>(
            Status::Provisional,
            [ready]() -> Pending::Data {
                if (!*ready) return {Status::Provisional, {}, {State::NotReady, {}}};
                return {Status::Ok, {}, {State::Complete, {}}};
            },
            0ms);
    };
    auto first = Send();
    auto second = Send();
    EXPECT_EQ(admission.GetExchanges(), 2U);
    EXPECT_EQ(Ask(), Status::ServiceUnavailable);
    *ready = true;
    EXPECT_EQ(first.get().GetStatus(), Status::Ok);
    EXPECT_EQ(second.get().GetStatus(), Status::Ok);
    EXPECT_EQ(admission.GetExchanges(), 0U);
}

class GuessingTest : public DispatcherTest {
protected:
    GuessingTest() { Refuse({{"WWW-Authenticate", "Digest nonce=\"1\""}}); }

    void Refuse(std::map<std::string, std::string> const& fields) {
        service->script = [fields] { return MakeTextResponse(Status::Unauthorized, "no", fields); };
    }

    void Guess(int times, std::string const& authorization) {
        for (int i = 0; i < times; ++i) EXPECT_EQ(Ask(authorization), Status::Unauthorized);
    }
};

TEST_F(GuessingTest, IsRefusedAfterTooManyWrongAnswers) {
    auto const begin = std::chrono::steady_clock::now();
    Guess(4, "Digest username=\"admin\"");
    auto const reply = Send("Digest username=\"admin\"").get();
    auto const elapsed = std::chrono::ceil<std::chrono::seconds>(std::chrono::steady_clock::now() - begin).count();
    EXPECT_EQ(reply.GetStatus(), Status::TooManyRequests);
    EXPECT_THAT(std::stoi(reply.GetFields().at("Retry-After")),
                testing::AllOf(testing::Ge(60 - elapsed), testing::Le(60)));
}

TEST_F(GuessingTest, StillAllowsRequestsWithoutCredentials) {
    Guess(4, "digest username=\"admin\"");
    EXPECT_EQ(Ask(), Status::Unauthorized);
}

TEST_F(GuessingTest, ExcludesRequestsWithoutCredentials) {
    Guess(10, "");
    EXPECT_EQ(Ask("Digest username=\"admin\""), Status::Unauthorized);
}

TEST_F(GuessingTest, ExcludesStaleNonces) {
    Refuse({{"WWW-Authenticate", "Digest nonce=\"1\", stale=true"}});
    Guess(10, "Digest username=\"admin\"");
}

TEST_F(GuessingTest, IsNotHiddenByARealmContainingStale) {
    // The attacker controls the realm text in the challenge.
    Refuse({{"WWW-Authenticate", "Digest realm=\"stale=true\", nonce=\"1\""}});
    Guess(4, "Digest username=\"admin\"");
    EXPECT_EQ(Ask("Digest username=\"admin\""), Status::TooManyRequests);
}

TEST_F(GuessingTest, ExcludesUnsupportedAlgorithms) { Guess(10, "Digest username=\"admin\", algorithm=SHA-256"); }

TEST_F(GuessingTest, ExcludesOtherSchemes) { Guess(10, "Basic YTpi"); }

TEST_F(GuessingTest, ExcludesSuccessfulLogins) {
    service->script = [] { return MakeTextResponse(Status::Ok, "served"); };
    for (int i = 0; i < 10; ++i) EXPECT_EQ(Ask("Digest username=\"admin\""), Status::Ok);
}

} // namespace
} // namespace zarn::host::web
