#include "faults/fault_control.h"
#include "support/eventually.h"
#include "support/host_process.h"
#include "support/pull_point_client.h"
#include "support/raw_connection.h"

#include <boost/json/parse.hpp>
#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::test {
namespace {

using namespace std::chrono_literals;
using testing::EndsWith;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

/// Every call, starting with the first.
constexpr int Always = 1 << 30;

std::vector<std::string> InShell(std::string const& script) { return {"sh", "-ec", script + R"(; exec "$@")", "sh"}; }

std::vector<std::string> ListFiles(TemporaryFolder const& folder) {
    std::vector<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(folder.GetPath()))
        if (entry.is_regular_file()) names.push_back(entry.path().filename());
    return names;
}

unsigned Ask(HostProcess const& host) {
    return RawConnection(host.GetPort()).Exchange(MakeSoapRequest("GetSystemDateAndTime")).status;
}

/// A host that runs out of descriptors.
class Descriptors : public testing::Test {
protected:
    int CountInLog(std::string_view text) {
        auto const log = host.GetProcess().GetLog();
        int count = 0;
        for (auto at = log.find(text); at != std::string::npos; at = log.find(text, at + 1)) ++count;
        return count;
    }

    /// Opens more connections than the host has descriptors for, until it has failed twice to accept one.
    void Exhaust(std::uint16_t port, std::string const& failure) {
        auto const begun = std::chrono::steady_clock::now();
        std::vector<std::unique_ptr<RawConnection>> connections;
        for (int i = 0; i < 64; ++i) connections.push_back(std::make_unique<RawConnection>(port));
        ASSERT_TRUE(host.GetProcess().WaitForLog(failure + ": Too many open files"));
        EXPECT_TRUE(Eventually([&] { return CountInLog(failure) >= 2; })) << "accept was not retried";
        int const lines = CountInLog(failure);
        auto const took = std::chrono::steady_clock::now() - begun;
        EXPECT_LE(lines, took / 1s + 1) << "logged more than once per second";
    }

    HostProcess host{{.launcher = InShell("ulimit -n 64")}};
};

TEST_F(Descriptors, RunOutWithoutAffectingLaterRequests) {
    Exhaust(host.GetPort(), "Cannot accept a connection");
    EXPECT_EQ(Ask(host), 200U);
}

TEST_F(Descriptors, RunOutWithoutAffectingLaterViewers) {
    auto const port = host.GetRtspPort();
    Exhaust(port, "Cannot accept an RTSP connection");
    EXPECT_EQ(RawConnection(port).Exchange("OPTIONS * RTSP/1.0\r\nCSeq: 1\r\n\r\n").status, 200U);
}

TEST(Memory, ShortForASecondOnlyDelaysRequests) {
    auto const folder = std::make_shared<TemporaryFolder>();
    FaultControl control(*folder);
    HostProcess host({.environment = control.GetEnvironment(), .folder = folder});
    RawConnection waiting(host.GetPort());
    control.Arm(Call::New, 1, ENOMEM, Always);
    waiting.Send(MakeSoapRequest("GetServices"));
    RawConnection newcomer(host.GetPort());
    newcomer.Send(MakeSoapRequest("GetSystemDateAndTime"));
    EXPECT_FALSE(newcomer.IsClosedWithin(1s));
    EXPECT_TRUE(control.HasFailed());
    control.Disarm();
    EXPECT_EQ(waiting.Read().status, 200U);
    EXPECT_EQ(newcomer.Read().status, 200U);
    EXPECT_EQ(Ask(host), 200U);
    EXPECT_TRUE(host.GetProcess().WaitForLog("Low memory: "));
}

/// File size limit of zero: writes fail as on a full disk, and raise a signal that terminates most programs.
TEST(Disk, AcceptingNoDataFailsTheFirstStartAndLeavesNoFile) {
    TemporaryFolder const folder;
    auto const process = HostProcess::Launch({.configuration = "", .launcher = InShell("ulimit -f 0")}, folder);
    EXPECT_EQ(process->Wait(), 2);
    EXPECT_THAT(process->GetLog(), EndsWith("File too large\n"));
    EXPECT_THAT(process->GetLog(), HasSubstr("zarn-host: " + folder / "config.json"));
    EXPECT_TRUE(ListFiles(folder).empty());
}

TEST(Disk, FillingUpFailsTheFirstStartWithAnError) {
    TemporaryFolder const folder;
    auto launcher = InShell("mount -t tmpfs -o size=4k none " + folder.GetPath().string());
    launcher.insert(launcher.begin(), {"unshare", "--map-root-user", "--mount"});
    auto trialArguments = launcher;
    trialArguments.emplace_back("true");
    Process trial(trialArguments);
    if (trial.Wait() != 0) GTEST_SKIP() << "a small tmpfs cannot be mounted: " << trial.GetLog();
    auto const process = HostProcess::Launch({.configuration = "", .launcher = launcher}, folder);
    EXPECT_EQ(process->Wait(), 2);
    EXPECT_THAT(process->GetLog(), EndsWith("No space left on device\n"));
}

TEST(Disk, FullAtRunTimeOnlyStopsTheBackupCopy) {
    auto const folder = std::make_shared<TemporaryFolder>();
    FaultControl control(*folder);
    HostProcess host({.environment = control.GetEnvironment(), .folder = folder});
    auto const before = folder->Read("config.json.good");
    control.Arm(Call::Write, 1, ENOSPC, Always);
    folder->Write("config.json", R"({"identity": {"name": "later"}, "settings": {"web_port": 0, "rtsp_port": 0}})");
    host.GetProcess().Signal(SIGHUP);
    EXPECT_TRUE(host.GetProcess().WaitForLog("Failed to copy the configuration: "));
    EXPECT_TRUE(host.GetProcess().WaitForLog("No space left on device"));
    EXPECT_EQ(folder->Read("config.json.good"), before);
    control.Disarm();
    EXPECT_EQ(Ask(host), 200U);
    // The host may still be writing the next copy.
    EXPECT_TRUE(Eventually([&] {
        return testing::Matches(UnorderedElementsAre("config.json", "config.json.good", "config.json.credentials",
                                                     "failing_calls"))(ListFiles(*folder));
    })) << testing::PrintToString(ListFiles(*folder));
}

TEST(Log, DoesNotStopTheHostWhenUnwritable) {
    auto const folder = std::make_shared<TemporaryFolder>();
    HostProcess host({.launcher = InShell("exec 2>/dev/full"), .folder = folder});
    folder->Write("config.json", "garbage");
    host.GetProcess().Signal(SIGHUP);
    EXPECT_TRUE(Eventually([&] { return Ask(host) == 200U; }));
}

} // namespace
} // namespace zarn::test
