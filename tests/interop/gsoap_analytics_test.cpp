#include "generated_client_test.h"

#include <gmock/gmock.h>

#include <string>

namespace zarn::test {
namespace {

using testing::NotNull;
using testing::Pointee;
using testing::SizeIs;

/// gSOAP's representation of a qualified name without a namespace.
constexpr char Module[] = R"("":ZARN)";

class AnalyticsClient : public GeneratedClientTest {
protected:
    AnalyticsClient() : GeneratedClientTest(HostProcess::TwoDescribedChannels) {}
};

TEST_F(AnalyticsClient, ReadsTheCapabilities) {
    auto const& capabilities = *Ask(&RuleEngineBindingProxy::GetServiceCapabilities).Capabilities;
    EXPECT_THAT(capabilities.SupportedMetadata, Pointee(true));
    EXPECT_THAT(capabilities.RuleSupport, Pointee(false));
}

TEST_F(AnalyticsClient, ReadsTheModules) {
    auto const& descriptions = Ask(&RuleEngineBindingProxy::GetSupportedAnalyticsModules)
                                   .SupportedAnalyticsModules->AnalyticsModuleDescription;
    ASSERT_THAT(descriptions, SizeIs(1));
    EXPECT_EQ(descriptions[0]->Name, Module);
    auto const modules = Ask(&RuleEngineBindingProxy::GetAnalyticsModules).AnalyticsModule;
    ASSERT_THAT(modules, SizeIs(1));
    EXPECT_EQ(modules[0]->Name, "ZARN");
    EXPECT_EQ(modules[0]->Type, Module);
}

TEST_F(AnalyticsClient, ReadsTheSampleFrame) {
    auto const metadata = Ask(&RuleEngineBindingProxy::GetSupportedMetadata).AnalyticsModule;
    ASSERT_THAT(metadata, SizeIs(1));
    EXPECT_EQ(metadata[0]->Type, Module);
    auto const& objects = metadata[0]->SampleFrame->Object;
    ASSERT_THAT(objects, SizeIs(2));
    for (auto const* object : objects) {
        EXPECT_THAT(object->ObjectId, NotNull());
        auto const& box = *object->Appearance->Shape->BoundingBox;
        auto const& centre = *object->Appearance->Shape->CenterOfGravity;
        EXPECT_LT(*box.left, *centre.x);
        EXPECT_LT(*centre.x, *box.right);
        EXPECT_LT(*box.bottom, *centre.y); // the y axis points upwards
        EXPECT_LT(*centre.y, *box.top);
    }
    EXPECT_EQ(objects[0]->Appearance->Class->Type.at(0)->__item, "Human");
    EXPECT_EQ(objects[1]->Appearance->Color->ColorCluster.at(0).Color->X, 192);
}

TEST_F(AnalyticsClient, GetsNotSupportedForRules) {
    _tan__GetRulesResponse response;
    auto const address = AddressOf(static_cast<RuleEngineBindingProxy*>(nullptr));
    EXPECT_EQ(client.Call(address, &RuleEngineBindingProxy::GetRules, {}, response), SOAP_SVR_FAULT);
    EXPECT_STREQ(soap_fault_string(client.GetContext()), "Not supported");
}

TEST_F(AnalyticsClient, CannotReadMetadataWithAWrongPassword) {
    GsoapClient stranger("wrong");
    _tan__GetSupportedMetadataResponse response;
    auto const address = AddressOf(static_cast<RuleEngineBindingProxy*>(nullptr));
    EXPECT_EQ(stranger.Call(address, &RuleEngineBindingProxy::GetSupportedMetadata, {}, response), 401);
}

} // namespace
} // namespace zarn::test
