#include "host/video/rtsp/tunnels.h"
#include "host/video/rtsp/worker.h"

#include <gtest/gtest.h>

namespace zarn::host::video::rtsp {
namespace {

TEST(RtspTunnels, FindTheHalfWithTheSameCookie) {
    Worker worker(0);
    Tunnels tunnels;
    EXPECT_TRUE(tunnels.Add("a", {&worker, {}, {}}));
    EXPECT_EQ(tunnels.Find("a")->worker, &worker);
    EXPECT_FALSE(tunnels.Find("b"));
    tunnels.Remove("a");
    EXPECT_FALSE(tunnels.Find("a"));
}

TEST(RtspTunnels, KeepTheFirstHalfWithACookie) {
    Worker first(0);
    Worker second(1);
    Tunnels tunnels;
    EXPECT_TRUE(tunnels.Add("a", {&first, {}, {}}));
    EXPECT_FALSE(tunnels.Add("a", {&second, {}, {}}));
    EXPECT_EQ(tunnels.Find("a")->worker, &first);
}

} // namespace
} // namespace zarn::host::video::rtsp
