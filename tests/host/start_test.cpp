#include "support/host_process.h"
#include "support/raw_connection.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace zarn::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;

/// Result of a host that is expected to exit by itself.
struct Ended {
    int status;
    std::string output;
    std::string log;
};

Ended RunToEnd(HostProcess::Options const& options, TemporaryFolder const& folder = {}) {
    auto const process = HostProcess::Launch(options, folder);
    int const status = process->Wait().value_or(-1);
    return {status, process->GetOutput(), process->GetLog()};
}

std::size_t CountLines(std::string const& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

TEST(Start, PrintsOneLineWhenEverythingIsUp) {
    HostProcess const host;
    EXPECT_THAT(host.GetProcess().GetOutput(), MatchesRegex("ready http://[0-9.]+:[0-9]+/onvif/device_service\n"));
    EXPECT_EQ(RawConnection(host.GetPort()).Exchange(MakeSoapRequest("GetSystemDateAndTime")).status, 200U);
}

TEST(Start, KeepsPortZeroInTheFileAndReportsTheBoundPort) {
    HostProcess const host({.arguments = {"--set", "settings.authentication.enabled=false"}});
    auto const uri = RawConnection(host.GetPort()).Exchange(MakeSoapRequest("GetCapabilities")).body;
    EXPECT_THAT(uri, HasSubstr(":" + std::to_string(host.GetPort()) + "/onvif/device_service"));
    EXPECT_THAT(host.GetFolder().Read("config.json"), HasSubstr(R"("web_port": 0)"));
    EXPECT_NE(host.GetRtspPort(), 0);
    EXPECT_THAT(RawConnection(host.GetPort()).Exchange(MakeSoapRequest("GetNetworkProtocols")).body,
                HasSubstr("<tt:Port>" + std::to_string(host.GetRtspPort()) + "</tt:Port>"));
}

TEST(Start, GeneratesAndPrintsAPasswordOnce) {
    auto const folder = std::make_shared<TemporaryFolder>();
    HostProcess first({.password = "", .folder = folder});
    EXPECT_THAT(first.GetProcess().GetOutput(),
                MatchesRegex("password of user admin, shown only now: [a-z2-9]+\nready .*\n"));
    EXPECT_EQ(first.Stop(), 0);
    EXPECT_THAT(first.GetProcess().GetLog(), Not(HasSubstr("password")));
    HostProcess second({.password = "", .folder = folder});
    EXPECT_EQ(second.Stop(), 0);
    EXPECT_THAT(second.GetProcess().GetOutput(), Not(HasSubstr("password")));
}

TEST(Start, StoresOnlyThePasswordHashInAnOwnerOnlyFile) {
    HostProcess const host({.arguments = {"--password", "open sesame"}});

    struct stat status {};

    ASSERT_EQ(stat((host.GetFolder() / "config.json.credentials").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    EXPECT_THAT(host.GetFolder().Read("config.json.credentials"),
                MatchesRegex("admin:zarnsuite.example:[0-9a-f]{32}\n"));
    EXPECT_THAT(host.GetFolder().Read("config.json"), Not(HasSubstr("sesame")));
}

TEST(Start, HidesThePasswordFromTheListOfProcesses) {
    HostProcess const host({.arguments = {"--password", "open sesame"}});
    std::ostringstream arguments;
    arguments << std::ifstream("/proc/" + std::to_string(host.GetProcess().GetId()) + "/cmdline").rdbuf();
    EXPECT_THAT(arguments.str(), HasSubstr("--password"));
    EXPECT_THAT(arguments.str(), Not(HasSubstr("sesame")));
}

TEST(Start, OverridesASettingForThisRunOnly) {
    HostProcess host({.arguments = {"--set", "identity.model=M1", "--set", "settings.authentication.enabled=false"}});
    auto const reply = RawConnection(host.GetPort()).Exchange(MakeSoapRequest("GetDeviceInformation"));
    EXPECT_THAT(reply.body, HasSubstr("<tds:Model>M1</tds:Model>"));
    EXPECT_EQ(host.Stop(), 0);
    EXPECT_THAT(host.GetFolder().Read("config.json"), Not(HasSubstr("M1")));
}

TEST(Start, ChecksAConfigurationAndEnds) {
    auto const result = RunToEnd({.arguments = {"--check"}});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, EndsWith("config.json: ok\n"));
    EXPECT_THAT(result.log, IsEmpty());
}

TEST(Start, WritesNothingWhenItOnlyChecks) {
    TemporaryFolder const folder;
    auto const result = RunToEnd({.configuration = "", .arguments = {"--check"}}, folder);
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.log, MatchesRegex("zarn-host: .*/config.json: No such file or directory\n"));
    EXPECT_TRUE(std::filesystem::is_empty(folder.GetPath()));
}

struct Misstart {
    char const* name;
    char const* configuration;
    std::vector<std::string> arguments;
    char const* message; ///< expected part of the message
};

class Refuses : public testing::TestWithParam<Misstart> {};

TEST_P(Refuses, ToStartWithOneClearLineAndStatusTwo) {
    auto const result = RunToEnd({.configuration = GetParam().configuration, .arguments = GetParam().arguments});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.output, IsEmpty());
    EXPECT_THAT(result.log, HasSubstr(GetParam().message));
    EXPECT_EQ(CountLines(result.log), 1U) << result.log;
}

INSTANTIATE_TEST_SUITE_P(
    Start, Refuses,
    testing::Values(
        Misstart{"UnknownOption", "{}", {"--bogus"}, "--bogus"},
        Misstart{"StrayArgument", "{}", {"bogus"}, "arguments that belong to no option"},
        Misstart{"OverrideWithoutValue",
                 "{}",
                 {"--set", "settings.web_port"},
                 "--set: \"settings.web_port\" is not followed by =VALUE"},
        Misstart{"OverrideOfNothing",
                 "{}",
                 {"--set", "settings.nothing=1"},
                 "--set: settings.nothing: there is no such setting"},
        Misstart{"OverrideOfAGroup", "{}", {"--set", "settings.tls=1"}, "--set: settings.tls: this is a group"},
        Misstart{"OverrideOutOfRange",
                 "{}",
                 {"--set", "settings.web_port=70000"},
                 "--set: settings.web_port: 70000 is not a port"},
        Misstart{"UnknownLevel", "{}", {"--log-level", "loud"}, "--log-level: loud is not"},
        Misstart{"EmptyPassword", "{}", {"--password", ""}, "--password"},
        Misstart{"BrokenJson", "{\n  \"settings\": \n}", {}, "config.json: line 3"},
        Misstart{"PortOutOfRange",
                 R"({"settings": {"web_port": 70000}})",
                 {},
                 "config.json: settings.web_port: 70000 is not a port"},
        Misstart{
            "WrongType", R"({"settings": {"onvif": {"enabled": 1}}})", {}, "config.json: settings.onvif.enabled: "},
        Misstart{"UnknownKey", R"({"settings": {"port": 1}})", {}, "config.json: settings.port"},
        Misstart{"LimitOutOfRange",
                 R"({"settings": {"limits": {"connections": 0}}})",
                 {},
                 "settings.limits.connections: 0 is not a number from 1"},
        Misstart{"BadChannelKey", R"({"channels": {"a.b": {}}})", {}, "config.json: channels"},
        Misstart{"BadSource",
                 R"({"channels": {"1": {"source": "test:nope"}}})",
                 {},
                 "config.json: channels.1.source: the value is not a source"},
        Misstart{"BadRate",
                 R"({"channels": {"1": {"video": {"rate": "fast"}}}})",
                 {},
                 "channels.1.video.rate: \"fast\" is not a frame rate"},
        Misstart{"CertificateWithoutKey",
                 R"({"settings": {"tls": {"certificate": "a.pem"}}})",
                 {},
                 "config.json: settings.tls.private_key"},
        Misstart{"MissingCertificate",
                 R"({"settings": {"tls": {"certificate": "/no/a.pem", "private_key": "/no/b.pem"}}})",
                 {},
                 "config.json: settings.tls.certificate: /no/a.pem cannot be used: No such file"}),
    [](auto const& row) { return row.param.name; });

TEST(Start, NamesThePortInUse) {
    HostProcess const first;
    auto const result = RunToEnd({.arguments = {"--set", "settings.web_port=" + std::to_string(first.GetPort())}});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.log, MatchesRegex("zarn-host: web port [0-9]+ cannot be bound: Address already in use\n"));
}

TEST(Start, PrintsItsVersionAndItsOptions) {
    EXPECT_THAT(RunToEnd({.arguments = {"--version"}}).output, MatchesRegex("zarn-host [0-9.]+\n"));
    EXPECT_THAT(RunToEnd({.arguments = {"--help"}}).output, HasSubstr("--log-level"));
}

} // namespace
} // namespace zarn::test
