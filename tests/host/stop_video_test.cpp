#include "host/host_process.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <string>
#include <thread>

namespace zarn::tests::host {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

TEST(StopWithASourceThatHangs, EndsInTimeAllTheSame) {
    auto const folder = std::make_shared<TemporaryFolder>();
    // Opening it takes until somebody writes into it.
    ASSERT_EQ(mkfifo((*folder / "pipe.ts").c_str(), 0600), 0);
    auto const configure = [&](std::string const& source) {
        return R"({"settings": {"web_port": 0, "rtsp_port": 0}, "channels": {"1": {"source": ")" + source + R"("}}})";
    };
    HostProcess host({.configuration = configure(*folder / "pipe.ts"), .folder = folder});
    folder->Write("config.json", configure("test:ball?width=128&height=96&rate=10"));
    host.GetProcess().Signal(SIGHUP);
    auto const deadline = Clock::now() + 10s;
    while (host.GetHealth().at("channels").at(0).at("state") != "running" && Clock::now() < deadline) {
        std::this_thread::sleep_for(10ms);
    }
    EXPECT_TRUE(host.GetProcess().WaitForLog("channel 1: its source does not close", 10s));
    EXPECT_EQ(host.Stop(2s), 0);
    EXPECT_TRUE(host.GetProcess().WaitForLog("something does not stop", 10s));
}

} // namespace
} // namespace zarn::tests::host
