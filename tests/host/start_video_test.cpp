#include "support/host_process.h"

#include <boost/json/parse.hpp>
#include <gmock/gmock.h>

namespace zarn::test {
namespace {

using testing::HasSubstr;

TEST(StartWithoutAConfiguration, WritesTheDefaultConfigurationWhenThereIsNone) {
    HostProcess const host(
        {.configuration = "", .arguments = {"--set", "settings.web_port=0", "--set", "settings.rtsp_port=0"}});
    auto const file = boost::json::parse(host.GetFolder().Read("config.json"));
    EXPECT_EQ(file.at("channels").as_object().size(), 2U);
    EXPECT_TRUE(file.at("settings").at("onvif").at("enabled").as_bool());
    EXPECT_EQ(file.at("settings").at("web_port"), 8080);
    EXPECT_EQ(file.at("identity").at("model"), "zarn-host");
    EXPECT_EQ(file.as_object().begin()->key(), "identity");
}

TEST(StartWithoutAConfiguration, UsesTheHomeFolder) {
    TemporaryFolder const home;
    Process process({ZARN_HOST_PROGRAM, "--set", "settings.web_port=0", "--set", "settings.rtsp_port=0"},
                    {{"HOME", home.GetPath().string()}, {"XDG_CONFIG_HOME", ""}});
    ASSERT_TRUE(process.WaitForOutput("ready")) << process.GetLog();
    EXPECT_THAT(home.Read(".config/zarn-host/config.json"), HasSubstr("test:ball"));
}

TEST(StartWithoutAConfiguration, PrefersXdgConfigHomeOverTheHomeFolder) {
    TemporaryFolder const home;
    Process process({ZARN_HOST_PROGRAM, "--set", "settings.web_port=0", "--set", "settings.rtsp_port=0"},
                    {{"HOME", "/nonexistent"}, {"XDG_CONFIG_HOME", home.GetPath().string()}});
    ASSERT_TRUE(process.WaitForOutput("ready")) << process.GetLog();
    EXPECT_THAT(home.Read("zarn-host/config.json"), HasSubstr("test:ball"));
}

} // namespace
} // namespace zarn::test
