#include "odd_root.h"

#include <service/onvif/media2.h>
#include <service/onvif/soap_context.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace zarn::service::onvif {
namespace {

using testing::Property;
using testing::Throws;

class Media2ServiceTest : public testing::Test {
protected:
    /// Expects that the source options without a token throw a BadCast with this type name.
    void ExpectBadCast(std::shared_ptr<configuration::node::Root> root, char const* typeName) {
        Media2Service service(context.get(), std::move(root), nullptr, false, nullptr);
        tr2__GetConfiguration request;
        _tr2__GetVideoSourceConfigurationOptionsResponse response;
        EXPECT_THAT([&] { service.GetVideoSourceConfigurationOptions(&request, response); },
                    Throws<object::BadCast>(Property(&object::BadCast::GetTypeName, typeName)));
    }

    std::shared_ptr<struct soap> context = MakeSoapContext();
};

TEST_F(Media2ServiceTest, ListsNoSourcesOfChannelsThatAreNoCollection) {
    ExpectBadCast(std::make_shared<configuration::node::Root>(), "unknown");
}

TEST_F(Media2ServiceTest, ListsNoSourcesWhenAChannelIsNoMap) {
    ExpectBadCast(std::make_shared<test::OddRoot>(), "zarn.configuration.node.Map");
}

TEST_F(Media2ServiceTest, NeedsADescriptionOfTheChannelForItsOptionsOnly) {
    Media2Service service(context.get(), nullptr, nullptr, false, nullptr);
    std::string token = "channels.1";
    tr2__GetConfiguration request;
    request.ConfigurationToken = &token;
    _tr2__GetVideoSourceConfigurationOptionsResponse source;
    EXPECT_THROW(service.GetVideoSourceConfigurationOptions(&request, source), std::bad_function_call);
    _tr2__GetVideoEncoderConfigurationOptionsResponse encoder;
    EXPECT_THROW(service.GetVideoEncoderConfigurationOptions(&request, encoder), std::bad_function_call);
    _tr2__GetMetadataConfigurationOptionsResponse metadata;
    EXPECT_EQ(service.GetMetadataConfigurationOptions(&request, metadata), SOAP_OK);
}

} // namespace
} // namespace zarn::service::onvif
