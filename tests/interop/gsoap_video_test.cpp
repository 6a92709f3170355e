#include "generated_client_test.h"
#include "support/eventually.h"
#include "support/process.h"

#include <gmock/gmock.h>

#include <set>
#include <string>

namespace zarn::test {
namespace {

constexpr char MovingBall[] = R"({
  "settings": {"web_port": 0, "rtsp_port": 0, "onvif": {"enabled": false}},
  "channels": {
    "1": {"name": "Gate", "source": "test:ball?width=160&height=120&rate=10"},
    "2": {"name": "Yard", "source": "test:ball?codec=h265&width=192&height=144&rate=10"}
  }
})";

constexpr std::size_t Frames = 10;

/// A client that plays every profile's stream and fetches its snapshot from the URIs of the Media2 service.
class ViewingClient : public GeneratedClientTest {
protected:
    ViewingClient() : GeneratedClientTest(MovingBall) { AwaitVideo(); }

    void AwaitVideo() const {
        for (std::size_t channel = 0; channel < 2; ++channel) {
            ASSERT_TRUE(
                Eventually([&] { return host.GetHealth().at("channels").at(channel).at("state") == "running"; }));
        }
    }

    /// The profiles with their resolutions, which the encoders report once there is video.
    std::vector<tr2__MediaProfile*> Profiles() {
        _tr2__GetProfiles request;
        request.Type = {"VideoEncoder"};
        return Ask(&Media2BindingProxy::GetProfiles, request).Profiles;
    }

    /// Plays a stream with GStreamer's RTSP client; returns the pictures, one luma byte per pixel.
    std::string Play(std::string const& uri) const {
        auto const pictures = host.GetFolder() / "pictures";
        Process player({"gst-launch-1.0", "-q", "rtspsrc", "location=" + uri, "protocols=tcp", "user-id=admin",
                        "user-pw=" + host.GetPassword(), "!", "decodebin", "!", "videoconvert", "!",
                        "video/x-raw,format=GRAY8", "!", "identity", "eos-after=" + std::to_string(Frames + 1), "!",
                        "filesink", "location=" + pictures});
        // Ignore the exit status: the player often interrupts its own PAUSE.
        EXPECT_TRUE(player.Wait()) << player.GetLog();
        return host.GetFolder().Read("pictures");
    }
};

TEST_F(ViewingClient, PlaysTheStreamOfEveryProfile) {
    auto const profiles = Profiles();
    ASSERT_EQ(profiles.size(), 2U);
    for (auto const* profile : profiles) {
        _tr2__GetStreamUri request;
        request.ProfileToken = profile->token;
        auto const bytes = Play(Ask(&Media2BindingProxy::GetStreamUri, request).Uri);
        auto const& resolution = *profile->Configurations->VideoEncoder->Resolution;
        auto const size = static_cast<std::size_t>(resolution.Width * resolution.Height);
        ASSERT_EQ(bytes.size(), size * Frames) << profile->token;
        std::set<std::string> pictures;
        for (std::size_t at = 0; at < bytes.size(); at += size) pictures.insert(bytes.substr(at, size));
        EXPECT_GT(pictures.size(), Frames / 2) << "the picture does not change";
    }
}

TEST_F(ViewingClient, FetchesTheSnapshotOfEveryProfile) {
    for (auto const* profile : Profiles()) {
        _tr2__GetSnapshotUri request;
        request.ProfileToken = profile->token;
        auto const uri = Ask(&Media2BindingProxy::GetSnapshotUri, request).Uri;
        auto const file = host.GetFolder() / "snapshot.jpeg";
        // A busy host answers 503 with Retry-After; curl then asks again.
        Process curl({"curl", "-sS", "--fail", "--retry", "20", "--retry-max-time", "20", "--digest", "-u",
                      "admin:" + host.GetPassword(), "-o", file, uri});
        ASSERT_EQ(curl.Wait(), 0) << uri << curl.GetLog();
        Process decoder(
            {"ffprobe", "-v", "error", "-show_entries", "stream=codec_name,width,height", "-of", "csv=p=0", file});
        ASSERT_EQ(decoder.Wait(), 0) << decoder.GetLog();
        auto const& resolution = *profile->Configurations->VideoEncoder->Resolution;
        EXPECT_EQ(decoder.GetOutput(),
                  "mjpeg," + std::to_string(resolution.Width) + "," + std::to_string(resolution.Height) + "\n");
    }
}

} // namespace
} // namespace zarn::test
