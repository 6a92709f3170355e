#include "support/eventually.h"
#include "support/host_process.h"
#include "support/raw_connection.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <exception>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace zarn::test {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// A pipe filled to capacity, so that the next writer blocks until something is read.
class FullPipe {
public:
    explicit FullPipe(std::string const& path) {
        if (mkfifo(path.c_str(), 0600) != 0) throw std::runtime_error("no pipe " + path);
        descriptor = open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
        std::string const filling(4096, 'x');
        while (write(descriptor, filling.data(), filling.size()) > 0) {
        }
    }

    ~FullPipe() { close(descriptor); }

    FullPipe(FullPipe const&) = delete;
    FullPipe& operator=(FullPipe const&) = delete;

    void Empty() const {
        std::string content(4096, '\0');
        while (read(descriptor, content.data(), content.size()) > 0) {
        }
    }

private:
    int descriptor = -1;
};

/// True if the program is blocked in a write. Source: proc(5), /proc/pid/syscall.
bool IsWriting(Process const& process) {
    std::ifstream file("/proc/" + std::to_string(process.GetId()) + "/syscall");
    long call = -1;
    return file >> call && call == SYS_write;
}

TEST(StopBeforeItRuns, WritesAllFilesAndExitsWithStatusZero) {
    for (int const signal : {SIGTERM, SIGINT}) {
        TemporaryFolder const folder;
        FullPipe const output(folder / "output");
        // The password is printed after all files are written, and the full pipe blocks it.
        Process host({"sh", "-c", "exec \"$0\" --config \"$1\" > \"$2\"", ZARN_HOST_PROGRAM, folder / "config.json",
                      folder / "output"});
        auto const credentials = folder.GetPath() / "config.json.credentials";
        ASSERT_TRUE(Eventually([&] { return std::filesystem::exists(credentials); }));
        host.Signal(SIGHUP);
        host.Signal(signal);
        EXPECT_TRUE(Eventually([&] { return IsWriting(host); }));
        EXPECT_FALSE(host.Wait(0ms));
        output.Empty();
        EXPECT_EQ(host.Wait(), 0) << host.GetLog();
        std::vector<std::string> files;
        for (auto const& entry : std::filesystem::directory_iterator(folder.GetPath())) {
            files.push_back(entry.path().filename().string());
        }
        EXPECT_THAT(files, testing::UnorderedElementsAre("config.json", "config.json.credentials", "config.json.good",
                                                         "output"));
    }
}

class Stop : public testing::Test {
protected:
    /// Client time limits exceed the time that the test allows for the stop.
    HostProcess host{
        {.arguments = {"--set", "settings.authentication.enabled=false", "--set", "settings.limits.header_seconds=3600",
                       "--set", "settings.limits.idle_seconds=3600"}}};
};

TEST_F(Stop, EndsWithStatusZeroAtEitherSignal) {
    host.ExpectStop();
    HostProcess interrupted;
    interrupted.GetProcess().Signal(SIGINT);
    EXPECT_EQ(interrupted.GetProcess().Wait(), 0);
}

TEST_F(Stop, EndsWithStatusZeroDespiteAFloodOfSighup) {
    auto const ended = [&] {
        siginfo_t information{};
        waitid(P_PID, static_cast<id_t>(host.GetProcess().GetId()), &information, WEXITED | WNOHANG | WNOWAIT);
        return information.si_pid != 0;
    };
    host.GetProcess().Signal(SIGHUP);
    host.GetProcess().Signal(SIGTERM);
    auto const deadline = Clock::now() + Process::Generous;
    while (!ended() && Clock::now() < deadline) host.GetProcess().Signal(SIGHUP);
    EXPECT_EQ(host.GetProcess().Wait(0s), 0);
}

TEST_F(Stop, DoesNotWaitForIdleClients) {
    std::vector<std::unique_ptr<RawConnection>> clients;
    for (auto const* bytes : {"", "POST /onv", "POST /onvif/a HTTP/1.1\r\nHost: h\r\nContent-Length: 9\r\n\r\n<"}) {
        for (int i = 0; i < 20; ++i) {
            clients.push_back(std::make_unique<RawConnection>(host.GetPort()));
            clients.back()->Send(bytes);
        }
    }
    ASSERT_EQ(RawConnection(host.GetPort()).Exchange(MakeSoapRequest("GetSystemDateAndTime")).status, 200U);
    host.ExpectStop();
}

TEST_F(Stop, EndsInTimeUnderLoad) {
    std::vector<std::thread> clients;
    std::atomic<bool> stop = false;
    std::atomic<int> served = 0;
    for (int i = 0; i < 8; ++i) {
        clients.emplace_back([&] {
            while (!stop) {
                try {
                    RawConnection connection(host.GetPort());
                    while (connection.Exchange(MakeSoapRequest("GetSystemDateAndTime")).status == 200) ++served;
                } catch (std::exception const&) {
                    std::this_thread::yield(); // the host has exited
                }
            }
        });
    }
    EXPECT_TRUE(Eventually([&] { return served >= 200; }));
    host.ExpectStop();
    stop = true;
    for (auto& client : clients) client.join();
}

} // namespace
} // namespace zarn::test
