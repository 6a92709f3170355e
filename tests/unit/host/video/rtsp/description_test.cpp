#include "host/video/rtsp/description.h"

#include <gmock/gmock.h>

namespace zarn::host::video::rtsp {
namespace {

using testing::HasSubstr;

std::shared_ptr<rtp::MediaFormat const> MakeFormat(std::string media, std::uint8_t payloadType) {
    auto format = std::make_shared<rtp::MediaFormat>();
    format->media = std::move(media);
    format->payloadType = payloadType;
    format->attributes = {"rtpmap:96 H264/90000", "fmtp:96 packetization-mode=1"};
    return format;
}

TEST(RtspDescription, TellsWhatAPlayerNeeds) {
    EXPECT_EQ(WriteDescription({MakeFormat("video", 96)}, 12, "192.0.2.1"),
              "v=0\r\no=- 12 1 IN IP4 192.0.2.1\r\ns=zarn-host\r\nt=0 0\r\na=type:broadcast\r\na=control:*\r\n"
              "a=range:npt=now-\r\nm=video 0 RTP/AVP 96\r\nc=IN IP4 0.0.0.0\r\na=rtpmap:96 H264/90000\r\n"
              "a=fmtp:96 packetization-mode=1\r\na=control:stream=0\r\na=ts-refclk:local\r\na=mediaclk:sender\r\n");
}

TEST(RtspDescription, HasAMediumForEachTrack) {
    auto const text = WriteDescription({MakeFormat("video", 96), MakeFormat("application", 107)}, 1, "192.0.2.1");
    EXPECT_THAT(text, HasSubstr("a=control:stream=0\r\n"));
    EXPECT_THAT(text, HasSubstr("m=application 0 RTP/AVP 107\r\n"));
    EXPECT_THAT(text, HasSubstr("a=control:stream=1\r\n"));
}

} // namespace
} // namespace zarn::host::video::rtsp
