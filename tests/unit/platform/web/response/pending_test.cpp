#include <zarn/container/buffer.h>
#include <zarn/web/response/pending.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace zarn::web::response {
namespace {

using Status = Pending::Status;
using Fields = std::map<std::string, std::string>;

Pending::Data NotReady() { return {Status::Provisional, {}, {State::NotReady, {}}}; }

TEST(Pending, KeepsStatusAndTimeout) {
    Pending const pending(Status::Provisional, NotReady, std::chrono::milliseconds(70));
    EXPECT_EQ(pending.GetStatus(), Status::Provisional);
    EXPECT_EQ(pending.GetTimeout(), std::chrono::milliseconds(70));
}

TEST(Pending, EvaluatesOnEveryPoll) {
    int asked = 0;
    Pending const pending(Status::Provisional,
                          [&asked] {
                              ++asked;
                              return NotReady();
                          },
                          {});
    EXPECT_EQ(pending.GetData().GetState(), State::NotReady);
    pending.GetData();
    EXPECT_EQ(asked, 2);
}

TEST(Pending, PropagatesExceptions) {
    Pending const pending(Status::Provisional, []() -> Pending::Data { throw std::out_of_range("gone"); }, {});
    EXPECT_THROW(pending.GetData(), std::out_of_range);
}

TEST(Pending, DataKeepsItsMembers) {
    auto const chunk = std::make_shared<container::Buffer>("body");
    Pending::Data const data(Status::Ok, {{"A", "b"}}, {State::Complete, {chunk}});
    EXPECT_EQ(data.GetStatus(), Status::Ok);
    EXPECT_EQ(data.GetFields(), (Fields{{"A", "b"}}));
    EXPECT_EQ(data.GetState(), State::Complete);
    ASSERT_EQ(data.GetBody().size(), 1U);
    EXPECT_EQ(data.GetBody()[0], chunk);
}

TEST(Pending, StateHasTheValuesThatServicesUse) {
    EXPECT_EQ(static_cast<int>(State::Complete), 0);
    EXPECT_EQ(static_cast<int>(State::NotReady), 1);
}

TEST(MakeComplete, StaysCompleteWhenPolledRepeatedly) {
    auto const pending = MakeComplete(Status::NotFound, {{"A", "b"}}, "text");
    for (int count = 0; count < 2; ++count) {
        auto const data = pending->GetData();
        EXPECT_EQ(data.GetState(), State::Complete);
        EXPECT_EQ(data.GetStatus(), Status::NotFound);
        EXPECT_EQ(data.GetFields(), (Fields{{"A", "b"}}));
        ASSERT_EQ(data.GetBody().size(), 1U);
        EXPECT_EQ(data.GetBody()[0]->ToStringView(), "text");
    }
    EXPECT_EQ(pending->GetStatus(), Status::NotFound);
}

TEST(MakeComplete, HasNoChunkWithoutABody) { EXPECT_TRUE(MakeComplete(Status::Ok)->GetData().GetBody().empty()); }

} // namespace
} // namespace zarn::web::response
