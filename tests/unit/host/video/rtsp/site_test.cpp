#include "host/video/rtsp/site.h"
#include "host/video/rtsp/worker.h"

#include <boost/asio/ip/address.hpp>
#include <gtest/gtest.h>

#include <memory>

namespace zarn::host::video::rtsp {
namespace {

class RtspSite : public testing::Test {
protected:
    Worker first{0};
    Worker second{1};
    Site site{{&first, &second}, std::make_shared<FailedLogins>()};
    boost::asio::ip::address const peer = boost::asio::ip::make_address("192.0.2.1");
};

TEST_F(RtspSite, FindsTheWorkerOfASessionByItsIdentifier) {
    EXPECT_EQ(site.FindWorker(Site::MakeSessionId(first)), &first);
    EXPECT_EQ(site.FindWorker(Site::MakeSessionId(second)), &second);
    EXPECT_EQ(site.FindWorker("none"), nullptr);
    EXPECT_EQ(site.FindWorker(""), nullptr);
}

TEST_F(RtspSite, MakesIdentifiersThatCannotBeGuessed) {
    auto const id = Site::MakeSessionId(first);
    EXPECT_EQ(id.size(), 25U);
    EXPECT_NE(id, Site::MakeSessionId(first));
}

TEST_F(RtspSite, AllowsTwiceAsManySessionsAsConnections) {
    site.SetLimits({.connections = 1, .connectionsPerAddress = 1});
    auto const connection = site.AddConnection(peer);
    EXPECT_TRUE(connection);
    EXPECT_FALSE(site.AddConnection(peer));
    auto const one = site.AddSession(peer);
    auto const two = site.AddSession(peer);
    EXPECT_TRUE(one && two);
    EXPECT_FALSE(site.AddSession(peer));
}

TEST_F(RtspSite, KeepsTheChallengesOfTheSamePassword) {
    site.SetAuthentication(true, "a");
    auto const before = site.GetAuthentication();
    site.SetAuthentication(true, "a");
    EXPECT_EQ(site.GetAuthentication(), before);
    site.SetAuthentication(true, "b");
    EXPECT_NE(site.GetAuthentication(), before);
    site.SetAuthentication(false, "b");
    EXPECT_EQ(site.GetAuthentication(), nullptr);
}

} // namespace
} // namespace zarn::host::video::rtsp
