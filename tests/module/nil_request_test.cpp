#include "device_fixture.h"

#include <gtest/gtest.h>
#include <interface/operations.h>

namespace zarn::test {
namespace {

/// Whether two answers differ although the requests are alike: by the time or by an id.
bool AnswersDiffer(bindings::Operation const& operation) {
    return operation.name == "GetSystemDateAndTime" || operation.name == "CreatePullPointSubscription";
}

class NilRequest : public DeviceFixture {};

/// gSOAP passes a null pointer to the operation for such a request.
TEST_F(NilRequest, IsAnsweredLikeAnEmptyRequest) {
    for (auto const& operation : bindings::Operations) {
        if (!operation.IsServed() || AnswersDiffer(operation)) continue;
        auto const element = std::string(operation.prefix) + ":" + std::string(operation.name);
        auto const empty = Ask("<" + element + "/>");
        auto const nil =
            Ask("<" + element + R"( xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" xsi:nil="true"/>)");
        EXPECT_EQ(nil.status, empty.status) << element;
        EXPECT_EQ(nil.Message(), empty.Message()) << element;
    }
}

TEST_F(NilRequest, MayHoldNilTokens) {
    EXPECT_THAT(Ask(R"(<trt:GetProfile><trt:ProfileToken xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance")"
                    R"( xsi:nil="true"/></trt:GetProfile>)"),
                IsFault("Sender", "Profile not found", {"ter:InvalidArgVal", "ter:NoProfile"}));
    EXPECT_THAT(
        Ask(R"(<tr2:GetProfiles xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"><tr2:Token xsi:nil="true"/>)"
            R"(<tr2:Type xsi:nil="true"/></tr2:GetProfiles>)")
            .Texts("//tr2:Profiles/@token"),
        testing::ElementsAre("channels.1", "channels.2"));
}

} // namespace
} // namespace zarn::test
