#include "support/eventually.h"
#include "support/host_process.h"

#include <gmock/gmock.h>

#include <string>

namespace zarn::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr char const* OneMovingChannel = R"({
  "settings": {"web_port": 0, "rtsp_port": 0},
  "channels": {"gate-1": {"name": "Gate", "source": "test:ball?width=320&height=240&rate=10"}}
})";

class SnapshotHost : public testing::Test {
protected:
    /// Downloads a picture to `latest.jpeg` with curl; returns the status.
    std::string Fetch(std::string const& password, std::string const& id = "gate-1") const {
        Process curl({"curl", "-s", "-o", host.GetFolder() / "latest.jpeg", "-w", "%{http_code} %{content_type}\n",
                      "--digest", "-u", "admin:" + password, host.GetUrl() + "/snapshot/" + id + "/latest.jpeg"});
        EXPECT_EQ(curl.Wait(), 0);
        return curl.GetOutput();
    }

    /// Retries until a picture is available, because the video takes a moment to start.
    std::string FetchPicture() const {
        std::string answer;
        Eventually([&] {
            answer = Fetch(host.GetPassword());
            return !answer.starts_with("503");
        });
        return answer;
    }

    HostProcess host{{.configuration = OneMovingChannel}};
};

TEST_F(SnapshotHost, ServesAPictureOfTheChannelsSize) {
    EXPECT_EQ(FetchPicture(), "200 image/jpeg\n");
    Process decoder({"ffprobe", "-v", "error", "-show_entries", "stream=codec_name,width,height", "-of", "csv=p=0",
                     host.GetFolder() / "latest.jpeg"});
    ASSERT_EQ(decoder.Wait(), 0);
    EXPECT_EQ(decoder.GetOutput(), "mjpeg,320,240\n");
}

TEST_F(SnapshotHost, ShowsNothingWithoutTheRightPassword) {
    EXPECT_THAT(Fetch("wrong"), StartsWith("401"));
    EXPECT_THAT(Fetch(host.GetPassword(), "other"), StartsWith("404"));
}

TEST_F(SnapshotHost, AnswersHeadRequests) {
    FetchPicture();
    // A busy host answers 503 with Retry-After; curl then asks again.
    Process curl({"curl", "-s", "-I", "--retry", "20", "--retry-max-time", "20", "--digest", "-u",
                  "admin:" + host.GetPassword(), host.GetUrl() + "/snapshot/gate-1/latest.jpeg"});
    ASSERT_EQ(curl.Wait(), 0);
    ASSERT_TRUE(curl.WaitForOutput("200 OK")) << curl.GetOutput();
    EXPECT_THAT(curl.GetOutput(), HasSubstr("Content-Type: image/jpeg"));
}

TEST_F(SnapshotHost, StopsInTimeWhileVideoRuns) {
    FetchPicture();
    host.ExpectStop();
}

} // namespace
} // namespace zarn::test
