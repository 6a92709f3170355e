#include <zarn/network/address.h>

#include <gtest/gtest.h>

namespace zarn::network::address::v4 {
namespace {

TEST(MakeAddress, ReadsTheOctetsInWrittenOrder) {
    EXPECT_EQ(Make(239, 255, 255, 250).to_string(), "239.255.255.250");
    EXPECT_EQ(Make(10, 0, 0, 5).to_string(), "10.0.0.5");
    EXPECT_EQ(Make(0, 0, 0, 0), boost::asio::ip::address_v4::any());
}

} // namespace
} // namespace zarn::network::address::v4
