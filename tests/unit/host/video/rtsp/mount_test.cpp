#include "host/video/gstreamer.h"
#include "host/video/rtsp/mount.h"

#include <boost/asio/io_context.hpp>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace zarn::host::video::rtsp {
namespace {

class RtspMount : public testing::Test {
protected:
    static void SetUpTestSuite() { InitializeGStreamer(); }

    std::shared_ptr<Mount const> Make(std::string const& id) {
        return std::make_shared<Mount const>(id, std::vector<Mount::Hubs>{{std::make_shared<Hub>(io, stream, 0)}});
    }

    void Publish(std::shared_ptr<rtp::Packets const> packets) {
        auto unit = std::make_shared<AccessUnit>();
        unit->isKey = true;
        unit->packets = std::move(packets);
        stream->Publish(std::move(unit));
    }

    boost::asio::io_context io;
    std::shared_ptr<Stream> stream = std::make_shared<Stream>(meta::data::VideoInfo());
};

TEST_F(RtspMount, IsDescribedWhenItsTracksHavePackets) {
    auto const mount = Make("1");
    EXPECT_EQ(mount->Describe(), std::nullopt);
    MiniHandle<GstCaps> const caps(gst_caps_from_string("video/x-h264,width=128,height=96"));
    stream->SetFormat(*ReadFormat(caps.get()));
    Publish(nullptr);
    EXPECT_EQ(mount->Describe(), std::nullopt) << "the video cannot be sent";
    auto const format = std::make_shared<rtp::MediaFormat const>();
    Publish(rtp::MakePackets(format, {"payload"}));
    EXPECT_EQ(mount->Describe(), Tracks{format});
}

TEST_F(RtspMount, IsFoundUntilItIsRemovedOrReplaced) {
    Mounts mounts;
    auto const first = Make("1");
    auto const second = Make("1");
    mounts.Set(first);
    EXPECT_EQ(mounts.Find("1"), first);
    EXPECT_EQ(mounts.Find("2"), nullptr);
    mounts.Set(second);
    EXPECT_EQ(mounts.Find("1"), second);
    EXPECT_EQ(mounts.Remove("1"), second);
    EXPECT_EQ(mounts.Find("1"), nullptr);
    EXPECT_EQ(mounts.Remove("1"), nullptr);
}

} // namespace
} // namespace zarn::host::video::rtsp
