#include "support/eventually.h"
#include "support/host_process.h"
#include "support/raw_connection.h"
#include "support/reserved_port.h"

#include <boost/system/system_error.hpp>
#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <future>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace zarn::test {
namespace {

using testing::AnyOf;
using testing::HasSubstr;

constexpr std::size_t Width = 160;
constexpr std::size_t Height = 120;
constexpr std::size_t Frames = 10;

std::string Configure(std::string const& settings = {}) {
    return R"({"settings": {"web_port": 0, "rtsp_port": 0)" + settings + R"(}, "channels": {
        "gate-1": {"name": "Gate", "source": "test:ball?width=160&height=120&rate=10"}}})";
}

/// ffmpeg's result for a stream.
struct View {
    int status;
    std::vector<std::string> pictures; ///< one luma byte per pixel
    std::string log;
};

class RtspHost : public testing::Test {
protected:
    RtspHost() : RtspHost(std::vector<std::string>()) {}

    /// Waits until the channel has video.
    void AwaitVideo() const {
        ASSERT_TRUE(Eventually([&] { return host.GetHealth().at("channels").at(0).at("state") == "running"; }));
    }

    std::string GetAddress(std::string const& credentials) const {
        return "rtsp://" + credentials + "127.0.0.1:" + std::to_string(host.GetRtspPort()) + "/channels/gate-1";
    }

    /// Decodes the stream with ffmpeg, an independent client.
    /// credentials  "user:password@", percent-encoded, or empty
    View Watch(std::string const& credentials, std::string const& transport = "tcp") const {
        host.GetFolder().Write("pictures", "");
        Process ffmpeg({"ffmpeg", "-y", "-nostdin", "-loglevel", "error", "-rtsp_transport", transport, "-i",
                        GetAddress(credentials), "-frames:v", std::to_string(Frames), "-pix_fmt", "gray", "-f",
                        "rawvideo", host.GetFolder() / "pictures"});
        View view{ffmpeg.Wait().value_or(-1), {}, ffmpeg.GetLog()};
        auto const bytes = host.GetFolder().Read("pictures");
        for (std::size_t at = 0; at < bytes.size(); at += Width * Height) {
            view.pictures.push_back(bytes.substr(at, Width * Height));
        }
        return view;
    }

    void ExpectMovingPictures(View const& view) const {
        EXPECT_EQ(view.status, 0) << view.log;
        ASSERT_EQ(view.pictures.size(), Frames) << view.log;
        EXPECT_EQ(view.pictures.back().size(), Width * Height);
        EXPECT_GT(std::set<std::string>(view.pictures.begin(), view.pictures.end()).size(), Frames / 2);
    }

    /// Waits until ffmpeg is served or, when `served` is false, refused.
    bool AwaitAnswer(std::string const& credentials, bool served) const {
        return Eventually([&] { return (Watch(credentials).status == 0) == served; });
    }

    void Reconfigure(std::string const& settings) {
        host.GetFolder().Write("config.json", Configure(settings));
        host.GetProcess().Signal(SIGHUP);
    }

    explicit RtspHost(std::vector<std::string> arguments)
        : host({.configuration = Configure(), .arguments = std::move(arguments), .password = "p:w@ /%"}) {
        AwaitVideo();
    }

    HostProcess host;

    static constexpr char const* Right = "admin:p%3Aw%40%20%2F%25@";
};

/// The status that a client gets which connects as soon as the port is bound.
unsigned AskOnceBound(std::uint16_t port, std::string const& request) {
    auto const deadline = std::chrono::steady_clock::now() + Process::Generous;
    while (std::chrono::steady_clock::now() < deadline) {
        try {
            return RawConnection(port).Exchange(request).status;
        } catch (boost::system::system_error const&) { // not bound yet
            std::this_thread::yield();
        }
    }
    throw std::runtime_error("port " + std::to_string(port) + " is not bound in time");
}

TEST(RtspStart, AppliesTheSettingsBeforeAnyClientIsServed) {
    ReservedPort const rtsp;
    ReservedPort const web;
    auto const rtspPort = std::to_string(rtsp.Get());
    auto describe =
        std::async(std::launch::async, AskOnceBound, rtsp.Get(),
                   "DESCRIBE rtsp://127.0.0.1:" + rtspPort + "/channels/gate-1 RTSP/1.0\r\nCSeq: 1\r\n\r\n");
    auto snapshot = std::async(std::launch::async, AskOnceBound, web.Get(),
                               "GET /snapshot/gate-1/latest.jpeg HTTP/1.1\r\nHost: h\r\n\r\n");
    HostProcess const host({.configuration = Configure(),
                            .arguments = {"--set", "settings.rtsp_port=" + rtspPort, "--set",
                                          "settings.web_port=" + std::to_string(web.Get()), "--set",
                                          "settings.authentication.enabled=false"}});
    for (auto* answer : {&describe, &snapshot}) EXPECT_THAT(answer->get(), AnyOf(200U, 503U)) << "neither 401 nor 404";
}

TEST_F(RtspHost, ServesMovingPicturesOverEitherTransport) {
    ExpectMovingPictures(Watch(Right, "tcp"));
    ExpectMovingPictures(Watch(Right, "udp"));
}

TEST_F(RtspHost, ServesNothingWithoutTheRightPassword) {
    for (auto const* credentials : {"", "admin:wrong@", "admin:@", "root:p%3Aw%40%20%2F%25@"}) {
        auto const view = Watch(credentials);
        EXPECT_NE(view.status, 0) << credentials;
        EXPECT_TRUE(view.pictures.empty()) << credentials;
        EXPECT_THAT(view.log, HasSubstr("401 Unauthorized")) << credentials;
    }
}

TEST_F(RtspHost, FollowsTheAuthenticationSetting) {
    Reconfigure(R"(, "authentication": {"enabled": false})");
    EXPECT_TRUE(AwaitAnswer("", true));
    Reconfigure("");
    EXPECT_TRUE(AwaitAnswer("", false));
    ExpectMovingPictures(Watch(Right));
}

TEST_F(RtspHost, FollowsTheConnectionLimit) {
    static constexpr char Options[] = "OPTIONS * RTSP/1.0\r\nCSeq: 1\r\n\r\n";
    auto const isServed = [](RawConnection& connection) {
        connection.Send(Options);
        return connection.ReadIfAny().has_value();
    };
    auto const isServedBesideAnother = [&]() -> std::optional<bool> {
        RawConnection first(host.GetRtspPort());
        RawConnection second(host.GetRtspPort());
        if (!isServed(first)) return std::nullopt; // those of the last attempt are not closed yet
        return isServed(second);
    };
    Reconfigure(R"(, "limits": {"rtsp_connections": 1, "connections": 50})");
    EXPECT_TRUE(Eventually([&] { return isServedBesideAnother() == false; }));
    Reconfigure("");
    EXPECT_TRUE(Eventually([&] { return isServedBesideAnother() == true; }));
}

TEST_F(RtspHost, StopsInTimeWhileItIsWatched) {
    std::vector<std::unique_ptr<Process>> viewers;
    for (auto const* transport : {"tcp", "udp"}) {
        viewers.push_back(std::make_unique<Process>(
            std::vector<std::string>{"ffmpeg", "-nostdin", "-loglevel", "error", "-rtsp_transport", transport, "-i",
                                     GetAddress(Right), "-f", "framecrc", "-flush_packets", "1", "-"}));
    }
    // The third packet line shows that the stream is running.
    for (auto const& viewer : viewers) ASSERT_TRUE(viewer->WaitForOutput("\n0,          2,")) << viewer->GetLog();
    host.ExpectStop();
    for (auto const& viewer : viewers) EXPECT_TRUE(viewer->Wait());
}

class RtspGuessing : public RtspHost {
protected:
    RtspGuessing() : RtspHost({"--set", "settings.limits.failed_logins_per_minute=3"}) {}

    unsigned GuessOverHttp() const {
        return RawConnection(host.GetPort())
            .Exchange(
                MakeSoapRequest("GetDeviceInformation",
                                "Authorization: Digest username=\"admin\", nonce=\"a\", "
                                "uri=\"/onvif/device_service\", response=\"00000000000000000000000000000000\"\r\n"))
            .status;
    }
};

TEST_F(RtspGuessing, IsBlockedAfterGuessingOnTheWebServer) {
    EXPECT_EQ(Watch(Right).status, 0);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(GuessOverHttp(), 401U);
    EXPECT_THAT(Watch(Right).log, HasSubstr("401 Unauthorized"));
}

TEST_F(RtspGuessing, BlocksTheWebServerToo) {
    for (int i = 0; i < 4; ++i) EXPECT_NE(Watch("admin:wrong@").status, 0);
    EXPECT_EQ(GuessOverHttp(), 429U);
}

} // namespace
} // namespace zarn::test
