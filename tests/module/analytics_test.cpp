#include "device_fixture.h"

#include <gtest/gtest.h>

namespace zarn::test {
namespace {

class Analytics : public DeviceFixture {};

TEST_F(Analytics, ReportsItsCapabilitiesWithoutCredentials) {
    EXPECT_THAT(AskAnonymously("<tan:GetServiceCapabilities/>"), Answers(R"(
        <tan:GetServiceCapabilitiesResponse>
          <tan:Capabilities RuleSupport="false" AnalyticsModuleSupport="true" CellBasedSceneDescriptionSupported="false"
                            RuleOptionsSupported="false" AnalyticsModuleOptionsSupported="true"
                            SupportedMetadata="true"/>
        </tan:GetServiceCapabilitiesResponse>)"));
}

TEST_F(Analytics, SupportsTheHostsEngineAsOneModule) {
    EXPECT_THAT(Ask("<tan:GetSupportedAnalyticsModules/>"), Answers(R"(
        <tan:GetSupportedAnalyticsModulesResponse>
          <tan:SupportedAnalyticsModules>
            <tt:AnalyticsModuleDescription Name="ZARN"/>
          </tan:SupportedAnalyticsModules>
        </tan:GetSupportedAnalyticsModulesResponse>)"));
}

TEST_F(Analytics, HasTheHostsEngineAsOneModule) {
    EXPECT_THAT(Ask("<tan:GetAnalyticsModules/>"), Answers(R"(
        <tan:GetAnalyticsModulesResponse>
          <tan:AnalyticsModule Name="ZARN" Type="ZARN"/>
        </tan:GetAnalyticsModulesResponse>)"));
}

TEST_F(Analytics, IgnoresTheConfigurationToken) {
    for (std::string const token : {"", "channels.1", "channels.none", "nowhere"}) {
        for (std::string const operation : {"GetSupportedAnalyticsModules", "GetAnalyticsModules"}) {
            auto const with = Ask("<tan:" + operation + "><tan:ConfigurationToken>" + token +
                                  "</tan:ConfigurationToken></tan:" + operation + ">");
            EXPECT_EQ(with.status, 200);
            EXPECT_EQ(with.Message(), Ask("<tan:" + operation + "/>").Message()) << token;
        }
    }
}

TEST_F(Analytics, ShowsItsMetadataByASampleFrame) {
    EXPECT_THAT(Ask("<tan:GetSupportedMetadata/>"), Answers(R"(
        <tan:GetSupportedMetadataResponse>
          <tan:AnalyticsModule Type="ZARN">
            <tan:SampleFrame UtcTime="2026-01-31T12:00:00Z">
              <tt:Object ObjectId="12">
                <tt:Appearance>
                  <tt:Shape>
                    <tt:BoundingBox bottom="-0.5" top="0.5" right="-0.5" left="-0.75"/>
                    <tt:CenterOfGravity x="-0.625" y="0.0625"/>
                  </tt:Shape>
                  <tt:Class><tt:Type Likelihood="0.875">Human</tt:Type></tt:Class>
                </tt:Appearance>
              </tt:Object>
              <tt:Object ObjectId="13">
                <tt:Appearance>
                  <tt:Shape>
                    <tt:BoundingBox bottom="-0.25" top="0.25" right="0.75" left="0"/>
                    <tt:CenterOfGravity x="0.375" y="-0.0625"/>
                  </tt:Shape>
                  <tt:Color>
                    <tt:ColorCluster>
                      <tt:Color X="192" Y="32" Z="16" Colorspace="http://www.onvif.org/ver10/colorspace/RGB"/>
                    </tt:ColorCluster>
                  </tt:Color>
                  <tt:Class>
                    <tt:Type Likelihood="0.75">Vehicle</tt:Type>
                    <tt:Type Likelihood="0.125">Bicycle</tt:Type>
                  </tt:Class>
                </tt:Appearance>
              </tt:Object>
            </tan:SampleFrame>
          </tan:AnalyticsModule>
        </tan:GetSupportedMetadataResponse>)"));
}

TEST_F(Analytics, IgnoresTheMetadataType) {
    auto const all = Ask("<tan:GetSupportedMetadata/>").Message();
    for (std::string const type : {"ZARN", "tt:Other", "unknown", "", "undeclared:Type", ":", "a b"}) {
        auto const asked =
            Ask("<tan:GetSupportedMetadata><tan:Type>" + type + "</tan:Type></tan:GetSupportedMetadata>");
        EXPECT_EQ(asked.status, 200);
        EXPECT_EQ(asked.Message(), all) << type;
    }
}

TEST_F(Analytics, ReportsItsModuleWithoutChannels) {
    Configure(R"({"channels": {}})");
    EXPECT_TRUE(Ask("<tan:GetAnalyticsModules/>").Has("//tan:AnalyticsModule[@Name='ZARN']"));
    EXPECT_TRUE(Ask("<tan:GetSupportedMetadata/>").Has("//tan:AnalyticsModule[@Type='ZARN']/tan:SampleFrame"));
}

/// Rule operations and those that would change modules fail the same way with or without credentials.
TEST_F(Analytics, RejectsRuleAndModuleChangesAsNotSupported) {
    auto const notSupported = IsFault("Receiver", "Not supported", {"ter:ActionNotSupported"});
    for (std::string const element :
         {"tan:GetRules", "tan:GetSupportedRules", "tan:GetRuleOptions", "tan:CreateRules", "tan:ModifyRules",
          "tan:DeleteRules", "tan:GetAnalyticsModuleOptions", "tan:CreateAnalyticsModules",
          "tan:ModifyAnalyticsModules", "tan:DeleteAnalyticsModules"}) {
        EXPECT_THAT(Ask("<" + element + "/>"), notSupported) << element;
        EXPECT_THAT(AskAnonymously("<" + element + "/>"), notSupported) << element;
    }
}

} // namespace
} // namespace zarn::test
