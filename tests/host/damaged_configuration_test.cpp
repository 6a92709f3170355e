#include "support/host_process.h"
#include "support/raw_connection.h"

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <memory>
#include <string>

namespace zarn::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

/// A host that has run once with a custom model, so that its configuration differs from the default.
class DamagedConfiguration : public testing::Test {
protected:
    DamagedConfiguration() {
        HostProcess first({.configuration = Configuration, .folder = folder});
        EXPECT_EQ(first.Stop(), 0);
    }

    HostProcess StartAgain() const {
        return HostProcess(
            {.configuration = "", .arguments = {"--set", "settings.authentication.enabled=false"}, .folder = folder});
    }

    static void ExpectTheModelOfBefore(HostProcess const& host) {
        EXPECT_THAT(RawConnection(host.GetPort()).Exchange(MakeSoapRequest("GetDeviceInformation")).body,
                    HasSubstr("<tds:Model>M-81</tds:Model>"));
    }

    static constexpr char const* Configuration =
        R"({"identity": {"model": "M-81"}, "settings": {"web_port": 0, "rtsp_port": 0}, "channels": {}})";

    std::shared_ptr<TemporaryFolder> folder = std::make_shared<TemporaryFolder>();
};

TEST_F(DamagedConfiguration, FallsBackToTheLastGoodCopyWhenTruncated) {
    folder->Write("config.json", R"({"identity": {"mod)");
    auto const host = StartAgain();
    ExpectTheModelOfBefore(host);
    EXPECT_TRUE(host.GetProcess().WaitForLog(
        "config.json: line 1, column 19: incomplete JSON: using the last good configuration, " +
        *folder / "config.json.good"))
        << host.GetProcess().GetLog();
    EXPECT_EQ(folder->Read("config.json"), R"({"identity": {"mod)") << "overwrote a file that may still be edited";
}

TEST_F(DamagedConfiguration, IsRestoredFromTheCopyWhenMissing) {
    std::filesystem::remove(*folder / "config.json");
    auto const host = StartAgain();
    ExpectTheModelOfBefore(host);
    EXPECT_TRUE(host.GetProcess().WaitForLog("config.json is gone: using the last good configuration"))
        << host.GetProcess().GetLog();
    EXPECT_EQ(folder->Read("config.json"), Configuration);
}

TEST_F(DamagedConfiguration, FailsACheckDespiteTheGoodCopy) {
    folder->Write("config.json", "garbage");
    auto const check = HostProcess::Launch({.configuration = "", .arguments = {"--check"}}, *folder);
    EXPECT_EQ(check->Wait(), 2);
    EXPECT_THAT(check->GetLog(), EndsWith("config.json: line 1, column 1: syntax error\n"));
}

TEST_F(DamagedConfiguration, ChangesNothingOnReload) {
    auto host = StartAgain();
    folder->Write("config.json", "garbage");
    host.GetProcess().Signal(SIGHUP);
    ASSERT_TRUE(host.GetProcess().WaitForLog("Keeping the previous configuration: "));
    ExpectTheModelOfBefore(host);
    EXPECT_EQ(folder->Read("config.json.good"), Configuration);
}

TEST_F(DamagedConfiguration, FallsBackToTheLastReloadedConfiguration) {
    std::string const later = R"({"identity": {"model": "M-82"}, "settings": {"web_port": 0, "rtsp_port": 0}})";
    {
        auto host = StartAgain();
        folder->Write("config.json", later);
        host.GetProcess().Signal(SIGHUP);
        ASSERT_TRUE(host.GetProcess().WaitForLog("again"));
    }
    EXPECT_EQ(folder->Read("config.json.good"), later);
}

} // namespace
} // namespace zarn::test
