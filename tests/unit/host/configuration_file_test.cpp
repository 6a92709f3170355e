#include "host/configuration_file.h"
#include "host/settings.h"
#include "host/temporary_folder.h"

#include <zarn/configuration/node/primitive.h>

#include <boost/json/parse.hpp>
#include <gmock/gmock.h>

#include <stdexcept>

namespace zarn::host {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

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

    tests::host::TemporaryFolder folder;
    std::shared_ptr<configuration::node::Root> root = std::make_shared<configuration::node::Root>();
    ConfigurationFile file{folder / "config.json", root};
};

TEST_F(ConfigurationFileTest, IsMadeOfTheDefault) {
    EXPECT_FALSE(file.Exists());
    file.Create();
    EXPECT_TRUE(file.Exists());
    EXPECT_TRUE(ReadBool(*root, OnvifPath));
    EXPECT_EQ(ReadChannels(*root).size(), 2U);
    auto const written = boost::json::parse(folder.Read("config.json"));
    EXPECT_EQ(written, root->ToJson(configuration::Layer::Persisted));
    EXPECT_EQ(written.at("settings").at("limits").at("connections"), 1024);
}

TEST_F(ConfigurationFileTest, IsMadeWithTheFoldersThatAreMissing) {
    ConfigurationFile deep(folder / "a/b/config.json", root);
    deep.Create();
    EXPECT_TRUE(deep.Exists());
}

TEST_F(ConfigurationFileTest, FillsTheTree) {
    EXPECT_EQ(GetLoadError(R"({"settings": {"web_port": 81}})"), "");
    EXPECT_EQ(ReadPort(*root, WebPortPath), 81);
}

TEST_F(ConfigurationFileTest, NamesItselfAndThePlaceOfAMistake) {
    EXPECT_THAT(GetLoadError(R"({"settings": {"web_port": 70000}})"),
                StartsWith((folder / "config.json") + ": settings.web_port: 70000 is not a port"));
    EXPECT_THAT(GetLoadError("{\n  \"a\" 1}"), AllOf(StartsWith((folder / "config.json") + ": "), HasSubstr("line 2")));
    EXPECT_THAT(GetLoadError(""), StartsWith((folder / "config.json") + ": "));
}

TEST_F(ConfigurationFileTest, LeavesTheTreeAloneWhenItIsBroken) {
    GetLoadError(R"({"settings": {"web_port": 81}})");
    GetLoadError(R"({"settings": {"web_port": 82, "rtsp_port": 70000}})");
    EXPECT_EQ(ReadPort(*root, WebPortPath), 81);
}

TEST_F(ConfigurationFileTest, IsWrittenWhenTheTreeHasChanged) {
    GetLoadError(R"({"settings": {"web_port": 81}})");
    Set(WebPortPath, 82);
    file.SaveChanges();
    EXPECT_THAT(folder.Read("config.json"), HasSubstr(R"("web_port": 82)"));
}

TEST_F(ConfigurationFileTest, IsLeftAsItsOwnerWroteItWhenNothingHasChanged) {
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

} // namespace
} // namespace zarn::host
