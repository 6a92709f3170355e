#include "device_fixture.h"

#include <gtest/gtest.h>

#include <array>

namespace zarn::test {
namespace {

/// The elements of served operations whose requests hold something to read.
constexpr std::array Elements{"tds:GetServices",
                              "tds:GetCapabilities",
                              "tds:SetUser",
                              "trt:GetProfile",
                              "trt:GetVideoSourceConfiguration",
                              "trt:GetVideoSourceConfigurationOptions",
                              "trt:GetVideoEncoderConfiguration",
                              "trt:GetVideoEncoderConfigurationOptions",
                              "trt:GetStreamUri",
                              "trt:GetSnapshotUri",
                              "trt:SetSynchronizationPoint",
                              "tr2:GetProfiles",
                              "tr2:GetVideoSourceConfigurations",
                              "tr2:GetVideoEncoderConfigurations",
                              "tr2:GetMetadataConfigurations",
                              "tr2:GetAnalyticsConfigurations",
                              "tr2:GetVideoSourceConfigurationOptions",
                              "tr2:GetVideoEncoderConfigurationOptions",
                              "tr2:GetMetadataConfigurationOptions",
                              "tr2:SetMetadataConfiguration",
                              "tr2:SetVideoEncoderConfiguration",
                              "tr2:SetSynchronizationPoint",
                              "tr2:GetStreamUri",
                              "tr2:GetSnapshotUri",
                              "tan:GetSupportedAnalyticsModules",
                              "tan:GetAnalyticsModules",
                              "tan:GetSupportedMetadata"};

class NilRequest : public DeviceFixture {};

/// gSOAP hands the operation a null pointer for it.
TEST_F(NilRequest, IsAnsweredAsAnEmptyOneIs) {
    for (std::string const element : Elements) {
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
