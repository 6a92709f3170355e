#include "pull_point_fixture.h"

#include <gmock/gmock.h>

#include <ctime>
#include <string>
#include <vector>

namespace zarn::test {
namespace {

using testing::IsEmpty;

/// Complete answers of the subscription operations.
class PullPointAnswer : public PullPointFixture {};

TEST_F(PullPointAnswer, ToTheCreationHoldsTheAddressAndTheTimes) {
    EXPECT_THAT(Masked(Ask("<tev:CreatePullPointSubscription/>")), Answers(R"(
        <tev:CreatePullPointSubscriptionResponse>
          <tev:SubscriptionReference>
            <wsa5:Address>http://@ADDRESS@:8080/onvif/events_service/Subscription?Idx=@ID@</wsa5:Address>
          </tev:SubscriptionReference>
          <wsnt:CurrentTime>@TIME@</wsnt:CurrentTime>
          <wsnt:TerminationTime>@TIME@</wsnt:TerminationTime>
        </tev:CreatePullPointSubscriptionResponse>)"));
}

TEST_F(PullPointAnswer, ToAnEmptyPullHoldsTheTimes) {
    EXPECT_THAT(Masked(Pull(Subscribe())), Answers(R"(
        <tev:PullMessagesResponse>
          <tev:CurrentTime>@TIME@</tev:CurrentTime>
          <tev:TerminationTime>@TIME@</tev:TerminationTime>
        </tev:PullMessagesResponse>)"));
}

TEST_F(PullPointAnswer, ToAPullHoldsTheMessageOfAnEvent) {
    auto const path = Subscribe();
    Publish(MakeFieldEvent("North"));
    EXPECT_THAT(Masked(Pull(path)), Answers(R"(
        <tev:PullMessagesResponse>
          <tev:CurrentTime>@TIME@</tev:CurrentTime>
          <tev:TerminationTime>@TIME@</tev:TerminationTime>
          <wsnt:NotificationMessage>
            <wsnt:Topic Dialect="http://www.onvif.org/ver10/tev/topicExpression/ConcreteSet">tns1:RuleEngine/FieldDetector/ObjectsInside</wsnt:Topic>
            <wsnt:Message>
              <tt:Message UtcTime="2026-01-31T12:00:00Z" PropertyOperation="Changed">
                <tt:Source>
                  <tt:SimpleItem Name="VideoSource" Value="channels.4294967295"/>
                  <tt:SimpleItem Name="Rule" Value="North"/>
                </tt:Source>
                <tt:Data>
                  <tt:SimpleItem Name="ObjectId" Value=""/>
                  <tt:SimpleItem Name="IsInside" Value="true"/>
                </tt:Data>
              </tt:Message>
            </wsnt:Message>
          </wsnt:NotificationMessage>
        </tev:PullMessagesResponse>)"));
}

TEST_F(PullPointAnswer, ToARenewalHoldsTheTimes) {
    EXPECT_THAT(Masked(Renew(Subscribe(), "PT1M")), Answers(R"(
        <wsnt:RenewResponse>
          <wsnt:TerminationTime>@TIME@</wsnt:TerminationTime>
          <wsnt:CurrentTime>@TIME@</wsnt:CurrentTime>
        </wsnt:RenewResponse>)"));
}

TEST_F(PullPointAnswer, HoldsTenThousandMessagesInOrder) {
    auto const path = Subscribe();
    std::vector<std::string> names;
    for (int i = 0; i < 10'000; ++i) Publish(MakeFieldEvent(names.emplace_back(std::to_string(i))));
    auto const begin = std::clock(); // processor time: unaffected by other processes
    auto const data = WaitFor(*PostPull(path, 10'000, "PT0S"));
    auto const lasted = std::clock() - begin;
    RecordProperty("milliseconds", std::to_string(lasted * 1000 / CLOCKS_PER_SEC));
    EXPECT_EQ(GetRules(ToReply(data)), names);
    EXPECT_THAT(GetRules(Pull(path)), IsEmpty());
#if defined(NDEBUG) && !defined(ZARN_SANITIZED) // debug and sanitizer builds are slower
    EXPECT_LT(lasted, CLOCKS_PER_SEC);
#endif
}

} // namespace
} // namespace zarn::test
