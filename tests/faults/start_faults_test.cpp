#include "faults/fault.h"
#include "faults/fault_control.h"
#include "support/host_process.h"
#include "support/raw_connection.h"

#include <boost/json/parse.hpp>
#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <memory>
#include <regex>
#include <string>

namespace zarn::test {
namespace {

using testing::AnyOf;
using testing::HasSubstr;
using testing::MatchesRegex;

/// Limits the test to half a minute: with more calls than this, only some of them fail, at even intervals.
constexpr int MostStarts = 60;

constexpr char const* Configuration =
    R"({"identity": {"model": "M-81"}, "settings": {"web_port": 0, "rtsp_port": 0}, "channels": {"1": {}}})";

/// One start of a host in its own folder, during which a call fails.
class FailingStart {
public:
    FailingStart(Fault const& fault, int n, std::string const& configuration) : control(*folder) {
        control.Arm(fault.call, n, fault.error);
        process = HostProcess::Launch({.configuration = configuration,
                                       .arguments = {"--set", "settings.web_port=0", "--set", "settings.rtsp_port=0"},
                                       .environment = control.GetEnvironment()},
                                      *folder);
    }

    /// Waits until the host serves or has ended. Returns true if the failing call was made.
    bool Expect() {
        bool const ready = process->WaitForOutput("/onvif/device_service\n");
        bool const failed = control.HasFailed();
        int const calls = control.CountCalls();
        control.Disarm();
        SCOPED_TRACE("call " + std::to_string(calls) + ":\n" + process->GetOutput() + process->GetLog());
        if (ready) {
            ExpectThatItServes();
        } else {
            ExpectThatItHasEndedWell();
        }
        ExpectWholeFiles();
        return failed;
    }

    int CountCalls() const { return control.CountCalls(); }

private:
    void ExpectThatItServes() const {
        std::smatch match;
        auto const output = process->GetOutput();
        ASSERT_TRUE(std::regex_search(output, match, std::regex(":([0-9]+)/onvif")));
        RawConnection connection(static_cast<std::uint16_t>(std::stoul(match[1])));
        EXPECT_EQ(connection.Exchange(MakeSoapRequest("GetSystemDateAndTime")).status, 200U);
        process->Signal(SIGTERM);
        EXPECT_EQ(process->Wait(), 0);
    }

    void ExpectThatItHasEndedWell() const {
        auto const status = process->Wait();
        ASSERT_TRUE(status) << "the host neither serves nor exits";
        EXPECT_THAT(*status, AnyOf(1, 2));
        auto const log = process->GetLog();
        auto const line = log.substr(log.rfind('\n', log.size() - 2) + 1);
        EXPECT_THAT(line, MatchesRegex("zarn-host: .+\n")) << "the error line is missing";
    }

    /// Expects complete files: the configuration is valid JSON, the credentials a complete line.
    void ExpectWholeFiles() const {
        for (auto const* name : {"config.json", "config.json.good"}) {
            if (!std::filesystem::exists(*folder / name)) continue;
            boost::system::error_code error;
            EXPECT_TRUE(boost::json::parse(folder->Read(name), error).is_object()) << name;
        }
        if (!std::filesystem::exists(*folder / "config.json.credentials")) return;
        EXPECT_THAT(folder->Read("config.json.credentials"), MatchesRegex("admin:zarnsuite.example:[0-9a-f]{32}\n"));
    }

    std::shared_ptr<TemporaryFolder> folder = std::make_shared<TemporaryFolder>();
    FaultControl control;
    std::unique_ptr<Process> process;
};

/// Makes each call of a kind fail in turn, or an evenly spaced subset when there are more than MostStarts.
void FailEachInTurn(Fault const& fault, std::string const& configuration) {
    FailingStart whole(fault, Never, configuration);
    EXPECT_FALSE(whole.Expect());
    int const calls = whole.CountCalls();
    ASSERT_GT(calls, 0) << "the host never makes this call";
    int const stride = std::max(1, calls / MostStarts);
    int failures = 0;
    for (int n = 1; n <= calls && !testing::Test::HasFailure(); n += stride)
        failures += FailingStart(fault, n, configuration).Expect() ? 1 : 0;
    // Threads make their calls in varying order, so the last one may not occur.
    EXPECT_GE(failures, calls / stride * 3 / 4);
    testing::Test::RecordProperty("calls", calls);
}

class FailureAtStart : public testing::TestWithParam<Fault> {};

TEST_P(FailureAtStart, StopsTheHostWithAnErrorOrIsSurvived) { FailEachInTurn(GetParam(), Configuration); }

INSTANTIATE_TEST_SUITE_P(Faults, FailureAtStart,
                         testing::Values(Fault{Call::New, ENOMEM}, Fault{Call::Socket, EMFILE},
                                         Fault{Call::Bind, EADDRINUSE}, Fault{Call::Listen, EADDRINUSE},
                                         Fault{Call::SetSocketOption, ENOBUFS}, Fault{Call::EpollCreate, EMFILE},
                                         Fault{Call::EventDescriptor, EMFILE}, Fault{Call::TimerDescriptor, EMFILE},
                                         Fault{Call::SignalDescriptor, EMFILE}, Fault{Call::Open, EMFILE},
                                         Fault{Call::MakeTemporary, EROFS}, Fault{Call::Read, EIO},
                                         Fault{Call::Write, ENOSPC}, Fault{Call::Sync, EIO},
                                         Fault{Call::Rename, EACCES}, Fault{Call::ChangeMode, EPERM},
                                         Fault{Call::Close, EIO}, Fault{Call::CreateThread, EAGAIN}),
                         [](auto const& row) { return NameOf(row.param); });

/// A first start also writes the configuration, and opens pipelines.
class FailureAtFirstStart : public testing::TestWithParam<Fault> {};

TEST_P(FailureAtFirstStart, LeavesNoPartialConfiguration) { FailEachInTurn(GetParam(), ""); }

INSTANTIATE_TEST_SUITE_P(Faults, FailureAtFirstStart,
                         testing::Values(Fault{Call::MakeTemporary, ENOSPC}, Fault{Call::Sync, EIO},
                                         Fault{Call::Rename, EACCES}, Fault{Call::ChangeMode, EPERM},
                                         Fault{Call::New, ENOMEM}, Fault{Call::CreateThread, EAGAIN},
                                         Fault{Call::Open, EMFILE}),
                         [](auto const& row) { return NameOf(row.param); });

} // namespace
} // namespace zarn::test
