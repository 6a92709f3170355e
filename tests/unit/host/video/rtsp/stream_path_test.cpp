#include "host/video/rtsp/stream_path.h"

#include <gtest/gtest.h>

namespace zarn::host::video::rtsp {
namespace {

TEST(StreamPath, NamesAChannel) {
    for (auto const* uri : {"rtsp://h:8554/channels/gate-1", "rtsp://h/channels/gate-1/", "/channels/gate-1",
                            "RTSP://h/channels/gate-1?a=b", "rtspu://h/channels/gate-1"}) {
        EXPECT_EQ(ParseStreamPath(uri), StreamPath{"gate-1"}) << uri;
    }
}

TEST(StreamPath, NamesATrackOfAChannel) {
    EXPECT_EQ(ParseStreamPath("rtsp://h/channels/1/stream=0"), (StreamPath{"1", 0}));
    EXPECT_EQ(ParseStreamPath("rtsp://h/channels/1/" + MakeTrackName(12)), (StreamPath{"1", 12}));
}

TEST(StreamPath, IsNoneForAnythingElse) {
    for (auto const* uri : {"*", "", "rtsp://", "rtsp://h", "rtsp://h/", "rtsp://h/channels", "rtsp://h/channels/",
                            "rtsp://h/channels/1/more", "rtsp://h/channels/1/stream=", "rtsp://h/channels/1/stream=x",
                            "rtsp://h/channels/1/stream=-1", "rtsp://h/channels/1/stream=99999999999999999999",
                            "http://h/channels/1", "rtsp://h/other/1"}) {
        EXPECT_EQ(ParseStreamPath(uri), std::nullopt) << uri;
    }
}

TEST(StreamPath, KeepsTheAddressThatTheClientUses) {
    EXPECT_EQ(MakeChannelUri("rtsp://gate.example:8554/channels/1/", "1", "10.0.0.1:8554"),
              "rtsp://gate.example:8554/channels/1");
    EXPECT_EQ(MakeChannelUri("/channels/1", "1", "10.0.0.1:8554"), "rtsp://10.0.0.1:8554/channels/1");
}

} // namespace
} // namespace zarn::host::video::rtsp
