#include <service/onvif/configuration_values.h>
#include <zarn/configuration/event.h>
#include <zarn/configuration/node/primitive.h>
#include <zarn/configuration/schema.h>
#include <zarn/object/bad_cast.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

namespace zarn::service::onvif {
namespace {

using namespace configuration;

/// A tree with the setting, a text and a collection.
class ReadEnabledTest : public testing::Test {
protected:
    ReadEnabledTest() {
        root->Schema({Schema(EnabledPath, false, "setting"), Schema("settings.name", "true", "text"),
                      Schema::Collection("channels", {Schema("name", "", "name")}, "channels")});
    }

    std::shared_ptr<Node> Find(char const* path) { return root->Find(path); }

    std::shared_ptr<node::Root> root = std::make_shared<node::Root>();
};

TEST_F(ReadEnabledTest, ReturnsTheSettingAfterAChange) {
    event::Changed const change(Find(EnabledPath));
    EXPECT_EQ(ReadEnabled(change), false);
    Find(EnabledPath)->As<node::Primitive<bool>>().Set(true);
    EXPECT_EQ(ReadEnabled(change), true);
}

TEST_F(ReadEnabledTest, ReturnsNothingForOtherEvents) {
    for (auto const* path : {EnabledPath, "settings.name", "channels"}) {
        EXPECT_EQ(ReadEnabled(event::Added(Find(path))), std::nullopt) << path;
        EXPECT_EQ(ReadEnabled(event::Removed(Find(path))), std::nullopt) << path;
        EXPECT_EQ(ReadEnabled(Event(Find(path))), std::nullopt) << path;
    }
}

TEST_F(ReadEnabledTest, ThrowsForAChangeOfANonBoolean) {
    for (std::string const path : {"settings.name", "settings", "channels"}) {
        try {
            ReadEnabled(event::Changed(Find(path.c_str())));
            ADD_FAILURE() << path << " was accepted";
        } catch (object::BadCast const& error) {
            EXPECT_EQ(error.GetTypeName(), "zarn.configuration.node.Bool");
            EXPECT_NE(std::string(error.what()).find(path), std::string::npos) << error.what();
        }
    }
}

} // namespace
} // namespace zarn::service::onvif
