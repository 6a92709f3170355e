#include "odd_root.h"

#include <service/onvif/media2.h>
#include <service/onvif/soap_context.h>
#include <zarn/configuration/schema.h>

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace zarn::service::onvif {
namespace {

using configuration::Schema;
using testing::ElementsAre;
using testing::Property;
using testing::Throws;

class Media2ServiceTest : public testing::Test {
protected:
    /// Expects that GetVideoSourceConfigurationOptions without a token throws a BadCast with this type name.
    void ExpectBadCast(std::shared_ptr<configuration::node::Root> root, char const* typeName) {
        Media2Service service(context.get(), std::move(root), nullptr, false, nullptr);
        tr2__GetConfiguration request;
        _tr2__GetVideoSourceConfigurationOptionsResponse response;
        EXPECT_THAT([&] { service.GetVideoSourceConfigurationOptions(&request, response); },
                    Throws<object::BadCast>(Property(&object::BadCast::GetTypeName, typeName)));
    }

    std::shared_ptr<struct soap> context = MakeSoapContext();
};

TEST_F(Media2ServiceTest, ThrowsWhenTheChannelsAreNotACollection) {
    ExpectBadCast(std::make_shared<configuration::node::Root>(), "unknown");
}

TEST_F(Media2ServiceTest, ThrowsWhenAChannelIsNotAMap) {
    ExpectBadCast(std::make_shared<test::OddRoot>(), "zarn.configuration.node.Map");
}

TEST_F(Media2ServiceTest, ThrowsWhenTheNameOfAChannelIsNotAString) {
    auto const root = std::make_shared<configuration::node::Root>();
    root->Schema({Schema::Collection("channels", {Schema("name", 7U, "a number")}, "channels")});
    root->FromJson(boost::json::parse(R"({"channels": {"1": {}}})"));
    ExpectBadCast(root, "zarn.configuration.node.String");
}

TEST_F(Media2ServiceTest, ListsTheSourcesWithoutVideoInfo) {
    auto const root = std::make_shared<configuration::node::Root>();
    root->Schema({Schema::Collection("channels", {Schema("name", "", "a text")}, "channels")});
    root->FromJson(boost::json::parse(R"({"channels": {"2": {}, "1": {}}})"));
    Media2Service service(context.get(), root, nullptr, false, nullptr);
    tr2__GetConfiguration request;
    _tr2__GetVideoSourceConfigurationOptionsResponse response;
    ASSERT_EQ(service.GetVideoSourceConfigurationOptions(&request, response), SOAP_OK);
    EXPECT_THAT(response.Options->VideoSourceTokensAvailable, ElementsAre("channels.2", "channels.1"));
}

TEST_F(Media2ServiceTest, NeedsVideoInfoOnlyForSourceAndEncoderOptions) {
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
