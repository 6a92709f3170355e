#include <service/onvif/uri_base.h>
#include <zarn/network/local.h>

#include <gtest/gtest.h>

namespace zarn::service::onvif {
namespace {

std::string Address() { return network::GetLocalIPAddress().to_string(); }

TEST(URIBase, AlwaysWritesThePortEvenTheDefault) {
    EXPECT_EQ(URIBase(80, false).GetBaseUri(), "http://" + Address() + ":80/onvif");
    EXPECT_EQ(URIBase(443, true).GetBaseUri(), "https://" + Address() + ":443/onvif");
}

TEST(URIBase, WritesPortZeroAsADigit) { EXPECT_EQ(URIBase(0, false).GetBaseUri(), "http://" + Address() + ":0/onvif"); }

TEST(URIBase, WritesTheLargestPort) {
    EXPECT_EQ(URIBase(65535, true).GetBaseUri(), "https://" + Address() + ":65535/onvif");
}

TEST(URIBase, ReturnsThePortUnchanged) { EXPECT_EQ(URIBase(8080, true).GetPort(), 8080); }

} // namespace
} // namespace zarn::service::onvif
