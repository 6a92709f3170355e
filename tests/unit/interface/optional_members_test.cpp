#include "exchange.h"

#include <gmock/gmock.h>
#include <soapH.h>

namespace zarn::bindings {
namespace {

// Members that the schema requires but this device omits; none may appear on the wire.
class OptionalMembers : public testing::Test {
protected:
    template <class Object>
    std::string Written(Object const& object) {
        return WithoutNamespaces(Write(context.get(), object, "x"));
    }

    Context const context = MakeContext();
};

TEST_F(OptionalMembers, ARequiredNullPointerIsWrittenAsAnEmptyElement) {
    tds__DeviceServiceCapabilities const capabilities;
    EXPECT_EQ(Written(capabilities), "<x><tds:Security/></x>");
}

TEST_F(OptionalMembers, DeviceServiceCapabilitiesMayOmitNetworkAndSystem) {
    tds__SecurityCapabilities security;
    tds__DeviceServiceCapabilities capabilities;
    capabilities.Security = &security;
    EXPECT_EQ(Written(capabilities), "<x><tds:Security></tds:Security></x>");
}

TEST_F(OptionalMembers, MediaVideoSourceConfigurationOptionsMayBeOmitted) {
    _trt__GetVideoSourceConfigurationOptionsResponse const response;
    EXPECT_EQ(Written(response), "<x></x>");
}

TEST_F(OptionalMembers, H264OptionsMayOmitRanges) {
    tt__VideoResolution resolution;
    resolution.Width = 1920;
    resolution.Height = 1080;
    tt__H264Options options;
    options.ResolutionsAvailable.push_back(&resolution);
    EXPECT_EQ(Written(options), "<x><tt:ResolutionsAvailable><tt:Width>1920</tt:Width><tt:Height>1080</tt:Height>"
                                "</tt:ResolutionsAvailable></x>");
}

TEST_F(OptionalMembers, VideoAnalyticsConfigurationsMayOmitEngines) {
    tt__VideoAnalyticsConfiguration configuration;
    configuration.Name = "Gate";
    configuration.UseCount = 1;
    configuration.token = "channels.1";
    EXPECT_EQ(Written(configuration),
              R"(<x token="channels.1"><tt:Name>Gate</tt:Name><tt:UseCount>1</tt:UseCount></x>)");
}

TEST_F(OptionalMembers, AnalyticsModulesMayOmitParameters) {
    tt__Config config;
    config.Name = "ZARN";
    config.Type = "ZARN";
    EXPECT_EQ(Written(config), R"(<x Name="ZARN" Type="ZARN"></x>)");
}

TEST_F(OptionalMembers, AnalyticsModuleDescriptionsMayOmitParameters) {
    tt__ConfigDescription description;
    description.Name = "ZARN";
    EXPECT_EQ(Written(description), R"(<x Name="ZARN"></x>)");
}

TEST_F(OptionalMembers, NullAttributesAreAbsent) {
    tev__Capabilities capabilities;
    bool const yes = true;
    capabilities.WSPullPointSupport = const_cast<bool*>(&yes); // NOLINT: the bindings have no const members
    EXPECT_EQ(Written(capabilities), R"(<x WSPullPointSupport="true"></x>)");
}

} // namespace
} // namespace zarn::bindings
