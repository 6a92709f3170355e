#include "unit/platform/configuration/tree.h"

namespace zarn::configuration {
namespace {

using testing::ElementsAre;
using testing::IsNull;

using MapTest = Tree;

TEST_F(MapTest, FindsNodesByDottedPath) {
    EXPECT_TRUE(root->Find("settings")->Is<node::Map>());
    EXPECT_TRUE(root->Find("settings.port")->Is<UInt16>());
    EXPECT_EQ(root->Find("settings")->As<node::Map>().Find("port"), root->Find("settings.port"));
}

TEST_F(MapTest, FindsNothingForAnUnknownPath) {
    Channels().Add("1");
    for (auto const* path : {"", ".", "nothing", "settings.", ".settings", "settings..port", "settings.nothing",
                             "settings.port.more", "channels.2", "channels.1.name.x", "Settings", "settings port"}) {
        EXPECT_THAT(root->Find(path), IsNull()) << path;
    }
}

TEST_F(MapTest, StoresThePathOfEveryNode) {
    Channels().Add("gate-1");
    for (auto const* path :
         {"settings", "settings.port", "channels", "channels.gate-1", "channels.gate-1.video.width"}) {
        EXPECT_EQ(root->Find(path)->GetPath(), path);
    }
    EXPECT_EQ(root->GetPath(), "");
    EXPECT_EQ(root->GetKey(), "");
    EXPECT_EQ(root->Find("channels.gate-1.name")->GetKey(), "name");
}

TEST_F(MapTest, IteratesInTheOrderOfDescription) {
    EXPECT_THAT(Keys(*root), ElementsAre("name", "settings", "channels"));
    EXPECT_THAT(Keys(At<node::Map>("settings")), ElementsAre("enabled", "port", "secret", "state"));
    EXPECT_EQ(root->GetSize(), 3U);
}

TEST_F(MapTest, IteratesOverASnapshot) {
    Channels().Add("1");
    Channels().Add("2");
    std::vector<std::string> seen;
    for (auto const& entry : Channels()) {
        seen.push_back(entry->GetPath());
        Channels().Remove("1");
        Channels().Remove("2");
        Channels().Add("3" + std::to_string(seen.size()));
    }
    EXPECT_THAT(seen, ElementsAre("channels.1", "channels.2"));
    EXPECT_THAT(Keys(Channels()), ElementsAre("31", "32"));
}

TEST_F(MapTest, IsDistinguishedByType) {
    EXPECT_TRUE(root->Is<node::Map>());
    EXPECT_TRUE(root->Is<node::Root>());
    EXPECT_FALSE(root->Is<node::Dynamic>());
    EXPECT_TRUE(Channels().Is<node::Map>());
    EXPECT_FALSE(root->Find("settings")->Is<node::Dynamic>());
    EXPECT_TRUE(root->Find("name")->Is<node::Value>());
    EXPECT_FALSE(root->Find("name")->Is<node::Map>());
}

TEST_F(MapTest, NamesPathAndTypesInAFailedCast) {
    try {
        At<Bool>("settings.port");
        FAIL();
    } catch (object::BadCast const& error) {
        EXPECT_EQ(error.GetTypeName(), "zarn.configuration.node.Bool");
        EXPECT_STREQ(error.what(),
                     "settings.port is a zarn.configuration.node.UInt16, not a zarn.configuration.node.Bool");
    }
    EXPECT_EQ(root->Find("settings")->BadCastError("unknown").GetTypeName(), "unknown");
}

TEST_F(MapTest, DescribesMissingNodesAndIntermediateMaps) {
    root->Schema({{"settings.onvif.enabled", true, "A switch"}});
    EXPECT_TRUE(At<Bool>("settings.onvif.enabled").Get());
    EXPECT_EQ(root->Find("settings.onvif.enabled")->GetPath(), "settings.onvif.enabled");
    At<node::Map>("settings").Schema({{"tls.key", "none", "Relative to its map"}});
    EXPECT_EQ(At<String>("settings.tls.key").Get(), "none");
}

TEST_F(MapTest, KeepsTheFirstDescriptionOfANode) {
    auto const before = root->Find("settings.enabled");
    root->Schema({{"settings.enabled", true, "Another default"}, {"settings.port", "text", "Another type"}});
    EXPECT_EQ(root->Find("settings.enabled"), before);
    EXPECT_FALSE(At<Bool>("settings.enabled").Get());
    EXPECT_TRUE(root->Find("settings.port")->Is<UInt16>());
}

TEST_F(MapTest, RefusesADescriptionBelowAValue) {
    EXPECT_EQ(ErrorOf([&] { root->Schema({{"name.first", "", ""}}); }), "name: a value has no members");
}

TEST_F(MapTest, RefusesADescriptionOfAnEntry) {
    EXPECT_EQ(ErrorOf([&] {
                  root->Schema({{"channels.1", "", ""}});
              }),
              "channels: the entries of a collection come from the collection's own schema");
    EXPECT_NE(ErrorOf([&] { root->Schema({{"channels.1.name", "", ""}}); }), "");
    EXPECT_EQ(Channels().GetSize(), 0U);
}

TEST_F(MapTest, RefusesADescriptionWithAnInvalidPath) {
    EXPECT_EQ(ErrorOf([&] {
                  root->Schema({{"settings.a b", "", ""}});
              }),
              "settings.a b: \"a b\" is not a key (1 to 64 letters, digits, '-' and '_')");
    EXPECT_NE(ErrorOf([&] { root->Schema({{"", "", ""}}); }), "");
    EXPECT_NE(ErrorOf([&] { root->Schema({{"a..b", "", ""}}); }), "");
    EXPECT_THAT(root->Find("a"), IsNull());
}

TEST_F(MapTest, KeepsChildrenUsableAfterTheTreeIsDestroyed) {
    auto const port = root->Find("settings.port");
    root.reset();
    EXPECT_EQ(port->As<UInt16>().Get(), 80);
    EXPECT_EQ(port->GetPath(), "settings.port");
    auto const lock = port->GetLock();
    port->As<UInt16>().Set(81);
    EXPECT_EQ(port->As<UInt16>().Get(), 81);
}

TEST_F(MapTest, CanBeLockedRecursively) {
    auto const outer = root->GetLock();
    auto const inner = root->Find("settings.port")->GetLock();
    At<UInt16>("settings.port").Set(81);
    EXPECT_EQ(At<UInt16>("settings.port").Get(), 81);
}

} // namespace
} // namespace zarn::configuration
