#include "support/eventually.h"
#include "support/host_process.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <string>

namespace zarn::test {
namespace {

TEST(StopWithASourceThatHangs, StillFinishesInTime) {
    auto const folder = std::make_shared<TemporaryFolder>();
    // Opening the pipe blocks until it has a writer.
    ASSERT_EQ(mkfifo((*folder / "pipe.ts").c_str(), 0600), 0);
    auto const configure = [&](std::string const& source) {
        return R"({"settings": {"web_port": 0, "rtsp_port": 0}, "channels": {"1": {"source": ")" + source + R"("}}})";
    };
    HostProcess host({.configuration = configure(*folder / "pipe.ts"), .folder = folder, .endsItself = true});
    folder->Write("config.json", configure("test:ball?width=128&height=96&rate=10"));
    host.GetProcess().Signal(SIGHUP);
    ASSERT_TRUE(Eventually([&] { return host.GetHealth().at("channels").at(0).at("state") == "running"; }));
    EXPECT_TRUE(host.GetProcess().WaitForLog("channel 1: its source does not close"));
    EXPECT_EQ(host.Stop(std::chrono::seconds(10)), 0);
    EXPECT_TRUE(host.GetProcess().WaitForLog("shutdown timed out; exiting"));
}

} // namespace
} // namespace zarn::test
