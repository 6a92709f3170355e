#include "host/video/rtsp/transport.h"

#include <gtest/gtest.h>

namespace zarn::host::video::rtsp {
namespace {

constexpr Transport Udp{.isInterleaved = false, .rtpPort = 5000, .rtcpPort = 5001};

TEST(RtspTransport, IsInterleavedOnTheWantedChannels) {
    EXPECT_EQ(ChooseTransport("RTP/AVP/TCP;unicast;interleaved=4-5"), (Transport{.isInterleaved = true, .channel = 4}));
    EXPECT_EQ(ChooseTransport("rtp/avp/tcp; interleaved=4"), (Transport{.isInterleaved = true, .channel = 4}));
    EXPECT_EQ(ChooseTransport("RTP/AVP/TCP;unicast"), Transport{.isInterleaved = true});
}

TEST(RtspTransport, IsUdpToTheWantedPorts) {
    for (auto const* field :
         {"RTP/AVP;unicast;client_port=5000-5001", "RTP/AVP/UDP;unicast;client_port=5000-5001;mode=\"PLAY\"",
          "RTP/AVP;client_port=5000", "RTP/AVP;unicast;client_port=5000-5001;mode=play;destination=192.0.2.9"}) {
        EXPECT_EQ(ChooseTransport(field), Udp) << field;
    }
}

TEST(RtspTransport, IsTheFirstThatIsServed) {
    EXPECT_EQ(ChooseTransport("RTP/AVP;multicast;port=5000-5001, RTP/AVP;unicast;client_port=5000-5001"), Udp);
    EXPECT_EQ(ChooseTransport("RTP/AVP;unicast;client_port=5000-5001,RTP/AVP/TCP"), Udp);
}

TEST(RtspTransport, IsNoneWhenNothingCanBeServed) {
    for (auto const* field :
         {"", ",", ";", "garbage", "RTP/AVP;multicast", "RTP/AVP;unicast", "RTP/SAVP;unicast;client_port=5000-5001",
          "RTP/AVPF/TCP;interleaved=0-1", "RTP/AVP;unicast;client_port=0-99999", "RTP/AVP;client_port=0-1",
          "RTP/AVP;client_port=65535", "RTP/AVP;client_port=5000-x", "RTP/AVP/TCP;interleaved=300-301",
          "RTP/AVP/TCP;interleaved=255", "RTP/AVP/TCP;interleaved=0-5", "RTP/AVP/TCP;interleaved=0-1;mode=record"}) {
        EXPECT_EQ(ChooseTransport(field), std::nullopt) << field;
    }
}

} // namespace
} // namespace zarn::host::video::rtsp
