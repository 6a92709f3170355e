#include "host/configuration_file.h"
#include "host/settings.h"
#include "support/temporary_folder.h"

#include <zarn/configuration/node.h>
#include <zarn/configuration/node/primitive.h>
#include <zarn/onvif/settings.h>

#include <boost/json/parse.hpp>
#include <gmock/gmock.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace zarn::host {
namespace {

using configuration::node::Read;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using zarn::onvif::EnabledPath;
using zarn::onvif::RtspPortPath;
using zarn::onvif::WebPortPath;

class ConfigurationFileTest : public testing::Test {
protected:
    ConfigurationFileTest() { DescribeSettings(*root); }

    void Set(char const* path, std::uint16_t value) const {
        root->Find(path)->As<configuration::node::Primitive<std::uint16_t>>().Set(value);
    }

    std::string GetLoadError(std::string const& text) {
        folder.Write("config.json", text);
        try {
            file.Load();
            return "";
        } catch (std::exception const& error) {
            return error.what();
        }
    }

    test::TemporaryFolder folder;
    std::shared_ptr<configuration::node::Root> root = std::make_shared<configuration::node::Root>();
    ConfigurationFile file{folder / "config.json", root};
};

TEST_F(ConfigurationFileTest, IsCreatedFromTheDefaults) {
    file.Open();
    EXPECT_TRUE(Read<bool>(*root, EnabledPath));
    EXPECT_EQ(root->Find("channels")->As<configuration::node::Map>().GetSize(), 2U);
    auto const written = boost::json::parse(folder.Read("config.json"));
    EXPECT_EQ(written, root->ToJson(configuration::Layer::Persisted));
    EXPECT_EQ(written.at("settings").at("limits").at("connections"), 1024);
}

TEST_F(ConfigurationFileTest, IsCreatedTogetherWithMissingFolders) {
    ConfigurationFile deep(folder / "a/b/config.json", root);
    deep.Open();
    EXPECT_EQ(boost::json::parse(folder.Read("a/b/config.json")), root->ToJson(configuration::Layer::Persisted));
}

TEST_F(ConfigurationFileTest, FillsTheTree) {
    EXPECT_EQ(GetLoadError(R"({"settings": {"web_port": 81}})"), "");
    EXPECT_EQ(Read<std::uint16_t>(*root, WebPortPath), 81);
}

TEST_F(ConfigurationFileTest, NamesFileAndPositionOfAnError) {
    EXPECT_THAT(GetLoadError(R"({"settings": {"web_port": 70000}})"),
                StartsWith((folder / "config.json") + ": settings.web_port: 70000 is not a port"));
    EXPECT_THAT(GetLoadError("{\n  \"a\" 1}"), AllOf(StartsWith((folder / "config.json") + ": "), HasSubstr("line 2")));
    EXPECT_THAT(GetLoadError(""), StartsWith((folder / "config.json") + ": "));
}

TEST_F(ConfigurationFileTest, LeavesTheTreeUnchangedWhenInvalid) {
    GetLoadError(R"({"settings": {"web_port": 81}})");
    GetLoadError(R"({"settings": {"web_port": 82, "rtsp_port": 70000}})");
    EXPECT_EQ(Read<std::uint16_t>(*root, WebPortPath), 81);
}

TEST_F(ConfigurationFileTest, IsWrittenWhenTheTreeHasChanged) {
    GetLoadError(R"({"settings": {"web_port": 81}})");
    Set(WebPortPath, 82);
    file.SaveChanges();
    EXPECT_THAT(folder.Read("config.json"), HasSubstr(R"("web_port": 82)"));
}

TEST_F(ConfigurationFileTest, IsNotRewrittenWithoutAChange) {
    std::string const text = R"({"settings":{"web_port":81}})";
    GetLoadError(text);
    file.SaveChanges();
    EXPECT_EQ(folder.Read("config.json"), text);
}

TEST_F(ConfigurationFileTest, HoldsNoOverrides) {
    GetLoadError(R"({"settings": {"web_port": 0}})");
    OverrideSetting(*root, WebPortPath, "18080");
    Set(RtspPortPath, 555);
    file.SaveChanges();
    EXPECT_THAT(folder.Read("config.json"),
                AllOf(HasSubstr(R"("web_port": 0)"), HasSubstr("555"), Not(HasSubstr("18080"))));
}

/// A configuration file after its first run.
class UsedConfigurationFile : public ConfigurationFileTest {
protected:
    UsedConfigurationFile() {
        folder.Write("config.json", R"({"settings": {"web_port": 81}})");
        ConfigurationFile first(folder / "config.json", MakeTree());
        first.Open();
        first.KeepCopy();
    }

    static std::shared_ptr<configuration::node::Root> MakeTree() {
        auto tree = std::make_shared<configuration::node::Root>();
        DescribeSettings(*tree);
        return tree;
    }

    std::string GetOpenError() {
        try {
            file.Open();
            return "";
        } catch (std::exception const& error) {
            return error.what();
        }
    }

    void Remove(char const* name) const { std::filesystem::remove(folder / name); }
};

TEST_F(UsedConfigurationFile, HasACopyReadableByItsOwnerOnly) {
    EXPECT_EQ(folder.Read("config.json.good"), folder.Read("config.json"));
    EXPECT_EQ(std::filesystem::status(folder / "config.json.good").permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(UsedConfigurationFile, IsRestoredFromItsCopyWhenMissing) {
    Remove("config.json");
    EXPECT_EQ(GetOpenError(), "");
    EXPECT_EQ(Read<std::uint16_t>(*root, WebPortPath), 81);
    EXPECT_EQ(folder.Read("config.json"), R"({"settings": {"web_port": 81}})");
}

TEST_F(UsedConfigurationFile, FallsBackToItsCopyWhenDamagedAndStaysUnchanged) {
    for (auto const& text : {std::string(), std::string(R"({"settings": {"web_p)"), std::string("\0\0\0\0", 4),
                             std::string("garbage"), std::string(R"({"settings": {"web_port": 82}}})")}) {
        folder.Write("config.json", text);
        auto const tree = MakeTree();
        ConfigurationFile(folder / "config.json", tree).Open();
        EXPECT_EQ(Read<std::uint16_t>(*tree, WebPortPath), 81) << text;
        EXPECT_EQ(folder.Read("config.json"), text);
    }
}

TEST_F(UsedConfigurationFile, IsRefusedForAnInvalidSettingDespiteItsCopy) {
    folder.Write("config.json", R"({"settings": {"web_port": 70000}})");
    EXPECT_THAT(GetOpenError(), StartsWith(folder / "config.json: settings.web_port: 70000 is not a port"));
    folder.Write("config.json", R"({"settings": {}, "settings": {}})");
    EXPECT_THAT(GetOpenError(), HasSubstr("occurs twice"));
    Remove("config.json");
    std::filesystem::create_directory(folder / "config.json");
    EXPECT_THAT(GetOpenError(), HasSubstr("Is a directory"));
}

TEST_F(UsedConfigurationFile, IsRefusedWhenDamagedWithoutACopy) {
    folder.Write("config.json", "garbage");
    Remove("config.json.good");
    EXPECT_THAT(GetOpenError(), StartsWith(folder / "config.json: line 1"));
}

TEST_F(UsedConfigurationFile, IsRefusedWhenMissingWithADamagedCopy) {
    folder.Write("config.json.good", "garbage");
    Remove("config.json");
    EXPECT_THAT(GetOpenError(), StartsWith(folder / "config.json.good: line 1"));
    EXPECT_EQ(folder.Read("config.json"), "");
}

TEST_F(UsedConfigurationFile, KeepsTheDamagedFileAsideWhenSettingsChange) {
    folder.Write("config.json", "{ half an edi");
    file.Open();
    file.SaveChanges();
    EXPECT_EQ(folder.Read("config.json"), "{ half an edi");
    Set(WebPortPath, 83);
    file.SaveChanges();
    EXPECT_EQ(folder.Read("config.json.damaged"), "{ half an edi");
    EXPECT_THAT(folder.Read("config.json"), HasSubstr(R"("web_port": 83)"));
}

TEST_F(UsedConfigurationFile, UpdatesItsCopyOnlyOnKeepCopy) {
    file.Open();
    Set(WebPortPath, 83);
    file.SaveChanges();
    EXPECT_THAT(folder.Read("config.json.good"), Not(HasSubstr("83"))) << "an unverified file was kept as good";
    file.KeepCopy();
    EXPECT_EQ(folder.Read("config.json.good"), folder.Read("config.json"));
}

TEST_F(UsedConfigurationFile, ContinuesWhenTheCopyCannotBeWritten) {
    Remove("config.json.good");
    std::filesystem::create_directory(folder / "config.json.good");
    file.Open();
    EXPECT_NO_THROW(file.KeepCopy());
}

TEST_F(UsedConfigurationFile, ThrowsOnReloadWhenDamagedDespiteItsCopy) {
    file.Open();
    folder.Write("config.json", "garbage");
    EXPECT_THROW(file.Load(), DamageError);
    EXPECT_EQ(Read<std::uint16_t>(*root, WebPortPath), 81);
}

} // namespace
} // namespace zarn::host
