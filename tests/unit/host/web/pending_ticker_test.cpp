#include "host/web/pending_ticker.h"
#include "support/eventually.h"
#include "web/io_thread.h"

#include <zarn/logging/capture.h>

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <stdexcept>
#include <thread>
#include <vector>

namespace zarn::host::web {
namespace {

using namespace std::chrono_literals;
using zarn::web::response::Pending;
using zarn::web::response::State;
using Clock = std::chrono::steady_clock;

constexpr auto Patience = 60s;

/// More queries than a young response receives: the interval grows by an eighth from 50 us until the response is 20 ms
/// old.
constexpr int QuestionsOfTheYoung = 50;

/// A response that becomes ready when the test says so.
struct Work {
    std::atomic<bool> ready = false;
    std::atomic<int> questions = 0;

    Pending::Data Ask() {
        ++questions;
        if (!ready) return {Status::Provisional, {}, {State::NotReady, {}}};
        return {Status::Accepted, {{"A", "1"}}, {State::Complete, {std::make_shared<container::Buffer>("done")}}};
    }

    void AwaitQuestions(int count) const {
        while (questions < count) std::this_thread::yield();
    }
};

std::shared_ptr<Pending> MakePending(std::shared_ptr<Work> const& work, std::chrono::milliseconds timeout = 0ms) {
    return std::make_shared<Pending>(
        Status::Provisional, [work] { return work->Ask(); }, timeout);
}

class PendingTickerTest : public testing::Test {
protected:
    ~PendingTickerTest() override { io.Stop(); }

    std::future<Reply> Watch(std::shared_ptr<Pending> pending) {
        auto const promise = std::make_shared<std::promise<Reply>>();
        ticker->Watch(std::move(pending), [promise](Reply reply) { promise->set_value(std::move(reply)); });
        return promise->get_future();
    }

    IoThread io;
    std::optional<PendingTicker> ticker{io.GetContext()};
};

TEST_F(PendingTickerTest, DeliversACompleteResponseAtOnce) {
    auto reply = Watch(zarn::web::response::MakeComplete(Status::Ok, {}, "now"));
    ASSERT_EQ(reply.wait_for(0s), std::future_status::ready);
    EXPECT_EQ(reply.get().GetBody().front()->ToStringView(), "now");
}

TEST_F(PendingTickerTest, DeliversAResponseOnceItIsReady) {
    auto const work = std::make_shared<Work>();
    auto reply = Watch(MakePending(work));
    work->AwaitQuestions(3);
    EXPECT_EQ(reply.wait_for(0s), std::future_status::timeout);
    work->ready = true;
    ASSERT_EQ(reply.wait_for(Patience), std::future_status::ready);
    auto const result = reply.get();
    EXPECT_EQ(result.GetStatus(), Status::Accepted);
    EXPECT_EQ(result.GetFields().at("A"), "1");
    EXPECT_EQ(result.GetBody().front()->ToStringView(), "done");
}

TEST_F(PendingTickerTest, StopsPollingAfterTheResponse) {
    auto const work = std::make_shared<Work>();
    auto reply = Watch(MakePending(work));
    work->ready = true;
    ASSERT_EQ(reply.wait_for(Patience), std::future_status::ready);
    int const asked = work->questions;
    auto const other = std::make_shared<Work>();
    auto const waiting = Watch(MakePending(other));
    other->AwaitQuestions(20);
    EXPECT_EQ(work->questions, asked);
}

TEST_F(PendingTickerTest, ReleasesAResponseAfterItsDelivery) {
    auto const work = std::make_shared<Work>();
    std::weak_ptr<Work> const weak = work;
    auto pending = MakePending(work);
    std::weak_ptr<Pending> const watched = pending;
    auto reply = Watch(std::move(pending));
    work->ready = true;
    ASSERT_EQ(reply.wait_for(Patience), std::future_status::ready);
    EXPECT_TRUE(test::Eventually([&] { return watched.expired(); }));
}

TEST_F(PendingTickerTest, Answers500WhenAResponseThrows) {
    logging::Capture const log;
    auto reply = Watch(std::make_shared<Pending>(
        Status::Provisional, []() -> Pending::Data { throw std::future_error(std::future_errc::broken_promise); },
        0ms));
    ASSERT_EQ(reply.wait_for(Patience), std::future_status::ready);
    EXPECT_EQ(reply.get().GetStatus(), Status::InternalServerError);
    EXPECT_TRUE(log.Contains("Broken promise"));
}

TEST_F(PendingTickerTest, Answers500ForANonStandardException) {
    auto reply = Watch(std::make_shared<Pending>(
        Status::Provisional, []() -> Pending::Data { throw 1; }, 0ms));
    ASSERT_EQ(reply.wait_for(Patience), std::future_status::ready);
    EXPECT_EQ(reply.get().GetStatus(), Status::InternalServerError);
}

TEST_F(PendingTickerTest, GivesUpAfterTheResponsesOwnTimeOut) {
    auto const begun = Clock::now();
    auto reply = Watch(MakePending(std::make_shared<Work>(), 50ms));
    ASSERT_EQ(reply.wait_for(Patience), std::future_status::ready);
    EXPECT_EQ(reply.get().GetStatus(), Status::GatewayTimeout);
    EXPECT_GE(Clock::now() - begun, 50ms);
}

TEST_F(PendingTickerTest, PollsANewResponseOften) {
    // Retries, because a busy machine may miss the deadline.
    EXPECT_TRUE(test::Eventually([this] {
        auto const work = std::make_shared<Work>();
        auto const begun = Clock::now();
        auto const reply = Watch(MakePending(work));
        work->AwaitQuestions(20);
        auto const lasted = Clock::now() - begun;
        work->ready = true;
        EXPECT_EQ(reply.wait_for(Patience), std::future_status::ready);
        return lasted <= 20ms;
    }));
}

TEST_F(PendingTickerTest, PollsAnOldResponseRarely) {
    constexpr int Rounds = 25; // 4 ms apart
    auto const work = std::make_shared<Work>();
    auto const begun = Clock::now();
    auto const reply = Watch(MakePending(work));
    work->AwaitQuestions(QuestionsOfTheYoung + Rounds);
    EXPECT_GE(Clock::now() - begun, Rounds * 4ms);
}

TEST_F(PendingTickerTest, ServesManyAtOnce) {
    std::vector<std::shared_ptr<Work>> works;
    std::vector<std::future<Reply>> replies;
    for (int i = 0; i < 1000; ++i) {
        works.push_back(std::make_shared<Work>());
        replies.push_back(Watch(MakePending(works.back())));
    }
    for (auto const& work : works) work->ready = true;
    for (auto& reply : replies) ASSERT_EQ(reply.wait_for(Patience), std::future_status::ready);
}

TEST_F(PendingTickerTest, ContinuesWhenADeliveryFails) {
    logging::Capture const log;
    auto const young = std::make_shared<Work>();
    auto const old = std::make_shared<Work>();
    auto oldReply = Watch(MakePending(old));
    old->AwaitQuestions(QuestionsOfTheYoung);
    for (int i = 0; i < 3; ++i) {
        ticker->Watch(MakePending(young), [](Reply const&) { throw std::runtime_error("no memory"); });
    }
    auto youngReply = Watch(MakePending(young));
    young->ready = true;
    ASSERT_EQ(youngReply.wait_for(Patience), std::future_status::ready);
    old->ready = true;
    ASSERT_EQ(oldReply.wait_for(Patience), std::future_status::ready);
    EXPECT_TRUE(log.WaitFor("no memory", Patience));
}

TEST_F(PendingTickerTest, DropsPendingResponsesOnDestruction) {
    auto const work = std::make_shared<Work>();
    auto reply = Watch(MakePending(work));
    io.Stop();
    ticker.reset();
    EXPECT_EQ(work.use_count(), 1);
    EXPECT_THROW(reply.get(), std::future_error);
}

} // namespace
} // namespace zarn::host::web
