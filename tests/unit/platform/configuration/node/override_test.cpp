#include "unit/platform/configuration/tree.h"

namespace zarn::configuration {
namespace {

class OverrideTest : public Tree {
protected:
    OverrideTest() {
        binding = port.Bind([this](auto const&) { heard.push_back(port.Get()); });
    }

    UInt16& port = At<UInt16>("settings.port");
    std::vector<int> heard;
    type::Binding binding;
};

TEST_F(OverrideTest, IsReadButNotPersisted) {
    port.Override(18080);
    EXPECT_TRUE(port.IsOverridden());
    EXPECT_EQ(port.Get(), 18080);
    EXPECT_EQ(Write(port, Layer::Effective), "18080");
    EXPECT_EQ(Write(port, Layer::Persisted), "80");
    EXPECT_EQ(Write(port, Layer::Default), "80");
}

TEST_F(OverrideTest, IsCheckedAgainstTheType) {
    port.OverrideFromString("18080");
    EXPECT_EQ(port.Get(), 18080);
    EXPECT_EQ(ErrorOf([&] { port.OverrideFromString("70000"); }), "settings.port: 70000 is not a port (1 to 65535)");
    EXPECT_EQ(port.Get(), 18080);
}

TEST_F(OverrideTest, StaysOnReload) {
    port.Override(18080);
    Read(R"({"settings": {"port": 0}})");
    EXPECT_EQ(port.Get(), 18080);
    EXPECT_EQ(Write(port), "0");
    port.RemoveOverride();
    EXPECT_EQ(port.Get(), 0);
}

TEST_F(OverrideTest, EndsWhenTheValueIsSet) {
    port.Override(18080);
    port.Set(81);
    EXPECT_FALSE(port.IsOverridden());
    EXPECT_EQ(port.Get(), 81);
    EXPECT_EQ(Write(port), "81");
}

TEST_F(OverrideTest, IsDeliveredOnlyWhenTheEffectiveValueChanges) {
    port.Override(18080);
    port.Override(18080);
    Read(R"({"settings": {"port": 90}})");
    port.RemoveOverride();
    port.RemoveOverride();
    port.Override(90);
    EXPECT_THAT(heard, testing::ElementsAre(18080, 90));
}

TEST_F(OverrideTest, DoesNotPutAnOptionalMemberIntoTheFile) {
    Channels().Add("1");
    At<UInt32>("channels.1.video.width").Override(640);
    EXPECT_TRUE(root->Find("channels.1.video")->IsStated());
    EXPECT_EQ(Write(Channels()), R"({"1":{"name":""}})");
    EXPECT_EQ(Write(Channels(), Layer::Effective), R"({"1":{"name":"","video":{"width":640}}})");
}

} // namespace
} // namespace zarn::configuration
