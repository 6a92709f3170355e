#include "support/eventually.h"
#include "support/thread_failure.h"
#include "unit/host/video/video_test.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>

namespace zarn::host::video {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

class EngineStop : public VideoTest {
protected:
    std::chrono::steady_clock::duration MeasureStop() {
        auto const begin = std::chrono::steady_clock::now();
        engine->Stop();
        return std::chrono::steady_clock::now() - begin;
    }
};

TEST_F(EngineStop, EndsTheStreamsInTime) {
    engine->SetChannels({From("1", Small), From("2", Small)});
    ASSERT_TRUE(WaitForState("1", ChannelState::Running));
    ASSERT_TRUE(WaitForState("2", ChannelState::Running));
    std::vector<std::unique_ptr<Viewer>> viewers;
    for (auto const* transport : {"tcp", "tcp", "tcp", "udp"}) {
        for (auto const* id : {"1", "2"}) {
            viewers.push_back(
                std::make_unique<Viewer>(GetUrl(id), ViewerOptions{.transport = transport, .decode = false}));
        }
    }
    for (auto const& viewer : viewers) ASSERT_TRUE(viewer->Next());
    EXPECT_LT(MeasureStop(), StopLimit);
    for (auto const& viewer : viewers)
        EXPECT_TRUE(test::Eventually([&] { return !viewer->Next(50ms) && viewer->HasEnded(); }));
}

TEST_F(EngineStop, DoesNotWaitForSourcesBeingOpened) {
    // 192.0.2.1 is a documentation address without a host.
    engine->SetChannels({From("1", "rtsp://192.0.2.1/stream"), From("2", folder / "missing.mp4"), From("3", Small)});
    EXPECT_LT(MeasureStop(), StopLimit);
}

TEST_F(EngineStop, DoesNotWaitForAServerThatNeverAnswers) {
    boost::asio::io_context context;
    boost::asio::ip::tcp::acceptor silent(context, {boost::asio::ip::address_v4::loopback(), 0});
    engine->SetChannels({From("1", "rtsp://127.0.0.1:" + std::to_string(silent.local_endpoint().port()) + "/stream")});
    auto const peer = silent.accept();
    EXPECT_EQ(GetStatus("1").state, ChannelState::Connecting);
    EXPECT_LT(MeasureStop(), StopLimit);
}

TEST_F(EngineStop, DoesNotWaitForTheRetryPause) {
    engine->SetChannels({From("1", folder / "missing.mp4")});
    ASSERT_TRUE(WaitForState("1", ChannelState::Failed));
    EXPECT_LT(MeasureStop(), StopLimit);
}

/// A source whose open() blocks because the pipe has no writer.
class EngineHang : public EngineStop {
protected:
    EngineHang() { mkfifo(path.c_str(), 0600); }

    ~EngineHang() override {
        // GStreamer opens a file several times.
        std::jthread const writing([this](std::stop_token const& stop) {
            while (!stop.stop_requested()) {
                close(open(path.c_str(), O_RDWR | O_CLOEXEC));
                std::this_thread::sleep_for(1ms);
            }
        });
        engine.reset();
    }

    /// Waits until the channel's thread blocks in open(), which the channel's state does not show.
    static bool AwaitHang() {
        return test::Eventually([] { return CountOpening() > 0; });
    }

    /// Number of threads in this process that block in open().
    static std::ptrdiff_t CountOpening() {
        auto const number = std::to_string(SYS_openat) + ' ';
        return std::ranges::count_if(std::filesystem::directory_iterator("/proc/self/task"), [&](auto const& task) {
            std::string call; // starts with the number of the blocking system call, or "running"
            std::getline(std::ifstream(task.path() / "syscall"), call);
            return call.starts_with(number);
        });
    }

    std::string const path = folder / "pipe.ts";
};

TEST_F(EngineHang, DoesNotKeepTheEngineFromStopping) {
    engine->SetChannels({From("1", path), From("2", Small)});
    ASSERT_TRUE(AwaitHang());
    EXPECT_LT(MeasureStop(), StopLimit);
}

TEST_F(EngineHang, DoesNotKeepChannelsFromBeingChanged) {
    engine->SetChannels({From("1", path), From("2", Small)});
    ASSERT_TRUE(AwaitHang());
    auto const begin = std::chrono::steady_clock::now();
    engine->SetChannels({From("1", Small)});
    EXPECT_LT(std::chrono::steady_clock::now() - begin, StopLimit);
    ASSERT_TRUE(WaitForState("1", ChannelState::Running));
    EXPECT_TRUE(Viewer(GetUrl("1")).Next());
}

TEST_F(EngineStop, ReportsAFailedThreadStart) {
    test::ThreadFailure const failure;
    try {
        Engine const next({0, false, ""});
        FAIL() << "the engine started";
    } catch (std::runtime_error const& error) {
        EXPECT_THAT(error.what(), HasSubstr("the video engine cannot be started"));
    }
}

TEST_F(EngineStop, IsHarmlessTwice) {
    engine->SetChannels({From("1", Small)});
    engine->Stop();
    engine->Stop();
    engine->SetAuthentication(true, "");
    EXPECT_TRUE(engine->GetStatus().empty());
}

TEST_F(EngineStop, FreesThePort) {
    auto const port = engine->GetPort();
    engine->Stop();
    Engine const next({port, false, ""});
    EXPECT_EQ(next.GetPort(), port);
}

TEST_F(EngineStop, NamesThePortThatCannotBeBound) {
    auto const port = engine->GetPort();
    try {
        Engine const next({port, false, ""});
        FAIL() << "a second engine bound the same port";
    } catch (std::runtime_error const& error) {
        EXPECT_THAT(error.what(), HasSubstr("RTSP port " + std::to_string(port)));
    }
}

} // namespace
} // namespace zarn::host::video
