#include "host/video/rtsp/mount.h"
#include "unit/host/video/rtsp/served_stream.h"

#include <gtest/gtest.h>

#include <memory>

namespace zarn::host::video::rtsp {
namespace {

using RtspMount = ServedStreamTest;

TEST_F(RtspMount, IsDescribedWhenItsTracksHavePackets) {
    EXPECT_EQ(mount->Describe(), std::nullopt);
    SetFormat();
    auto const unsendable = MakeUnit(true);
    unsendable->packets = nullptr;
    stream->Publish(unsendable);
    EXPECT_EQ(mount->Describe(), std::nullopt) << "the video cannot be sent";
    auto const unit = MakeUnit(true);
    stream->Publish(unit);
    EXPECT_EQ(mount->Describe(), Tracks{unit->packets->format});
}

TEST_F(RtspMount, IsFoundUntilItIsRemovedOrReplaced) {
    Mounts mounts;
    auto const first = MakeMount("1");
    auto const second = MakeMount("1");
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
