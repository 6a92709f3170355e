#include <zarn/network/authority.h>

#include <gtest/gtest.h>

namespace zarn::network {
namespace {

TEST(Authority, IsAHostWithOrWithoutAPort) {
    auto const plain = ParseAuthority("camera");
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain->host, "camera");
    EXPECT_FALSE(plain->bracketed);
    EXPECT_FALSE(plain->port);
    EXPECT_EQ(ParseAuthority("192.0.2.1:1")->port, 1);
    EXPECT_EQ(ParseAuthority("camera:65535")->port, 65535);
}

TEST(Authority, LosesTheBracketsOfAnIpv6Address) {
    auto const authority = ParseAuthority("[fe80::1%eth0]:554");
    ASSERT_TRUE(authority);
    EXPECT_EQ(authority->host, "fe80::1%eth0");
    EXPECT_TRUE(authority->bracketed);
    EXPECT_EQ(authority->port, 554);
    EXPECT_FALSE(ParseAuthority("[::1]")->port);
}

TEST(Authority, IsRejectedInAnyOtherForm) {
    for (auto const* text : {"", ":554", "[]", "[::1", "[::1]x", "[::1]554", "a:", "a:0", "a:65536", "a:-1", "a:1a",
                             "a: 1", "a:1:2", "::1"}) {
        EXPECT_FALSE(ParseAuthority(text)) << text;
    }
}

} // namespace
} // namespace zarn::network
