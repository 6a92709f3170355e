#include <zarn/onvif/discovery/endpoint.h>

#include <boost/uuid/string_generator.hpp>
#include <boost/uuid/uuid.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace zarn::onvif::discovery {
namespace {

Machine const Known{"0123456789abcdef0123456789abcdef", "aa:bb:cc:dd:ee:ff", "gate"};

TEST(MakeEndpoint, IsAUuidOfVersion5) {
    auto const endpoint = MakeEndpoint(Known);
    ASSERT_TRUE(endpoint.starts_with("urn:uuid:"));
    auto const uuid = boost::uuids::string_generator()(endpoint.substr(9));
    EXPECT_EQ(uuid.version(), boost::uuids::uuid::version_name_based_sha1);
    EXPECT_EQ(uuid.variant(), boost::uuids::uuid::variant_rfc_4122);
}

TEST(MakeEndpoint, StaysTheSameForEver) {
    // Must match deployed devices, which clients recognise by this value.
    EXPECT_EQ(MakeEndpoint(Known), "urn:uuid:3a3bdbf9-ff97-5d91-aeae-7375ffb9f612");
}

TEST(MakeEndpoint, UsesTheFirstAvailableIdentity) {
    auto other = Known;
    other.hardwareAddress = "00:00:00:00:00:01";
    other.hostname = "yard";
    EXPECT_EQ(MakeEndpoint(other), MakeEndpoint(Known));
    EXPECT_EQ(MakeEndpoint({"", "aa:bb:cc:dd:ee:ff", "gate"}), MakeEndpoint({"", "aa:bb:cc:dd:ee:ff", "yard"}));
}

TEST(MakeEndpoint, DiffersBetweenMachines) {
    std::set<std::string> const endpoints{
        MakeEndpoint(Known),
        MakeEndpoint({"1123456789abcdef0123456789abcdef", "", ""}),
        MakeEndpoint({"", "aa:bb:cc:dd:ee:ff", ""}),
        MakeEndpoint({"", "aa:bb:cc:dd:ee:fe", ""}),
        MakeEndpoint({"", "", "gate"}),
        MakeEndpoint({"", "", "yard"}),
        MakeEndpoint({"", "", "aa:bb:cc:dd:ee:ff"}), // a host name that looks like a hardware address
        MakeEndpoint({"", "", ""}),
    };
    EXPECT_EQ(endpoints.size(), 8U);
}

TEST(MakeEndpoint, DoesNotRevealItsInput) {
    EXPECT_THAT(MakeEndpoint(Known), testing::Not(testing::HasSubstr("01234567")));
    EXPECT_THAT(MakeEndpoint({"", "aa:bb:cc:dd:ee:ff", ""}), testing::Not(testing::HasSubstr("ddeeff")));
}

std::string Choose(std::vector<std::string> const& addresses) {
    std::vector<network::Interface> interfaces(1);
    interfaces[0].loopback = true;
    interfaces[0].hardwareAddress = "00:00:00:00:00:01";
    for (auto const& address : addresses) interfaces.emplace_back().hardwareAddress = address;
    return ChooseHardwareAddress(interfaces);
}

TEST(ChooseHardwareAddress, ChoosesTheLowest) {
    EXPECT_EQ(Choose({"a4:bb:cc:dd:ee:ff", "94:bb:cc:dd:ee:f1", "94:bb:cc:dd:ee:f2"}), "94:bb:cc:dd:ee:f1");
}

TEST(ChooseHardwareAddress, PrefersAManufacturerAssignedAddress) {
    EXPECT_EQ(Choose({"02:42:ac:11:00:02", "a4:bb:cc:dd:ee:ff", "0e:00:00:00:00:01"}), "a4:bb:cc:dd:ee:ff");
    EXPECT_EQ(Choose({"fe:00:00:00:00:01", "02:42:ac:11:00:02"}), "02:42:ac:11:00:02");
}

TEST(ChooseHardwareAddress, IgnoresInvalidAddresses) {
    EXPECT_EQ(Choose({}), "");
    EXPECT_EQ(Choose({"", "00:00:00:00", "00:00:00:00:00:00", "0a:01:00:02"}), "");
}

TEST(ReadMachine, FindsAnIdentityOfThisMachine) {
    auto const machine = ReadMachine();
    EXPECT_TRUE(machine.id.empty() || machine.id.size() == 32U);
    EXPECT_FALSE(machine.id.empty() && machine.hardwareAddress.empty() && machine.hostname.empty());
}

TEST(GetEndpoint, IsThatOfThisMachine) {
    EXPECT_EQ(GetEndpoint(), MakeEndpoint(ReadMachine()));
    EXPECT_EQ(&GetEndpoint(), &GetEndpoint());
}

} // namespace
} // namespace zarn::onvif::discovery
