#include "host/access/connection_count.h"

#include <boost/asio/ip/address.hpp>
#include <gtest/gtest.h>

#include <optional>

namespace zarn::host {
namespace {

auto const First = boost::asio::ip::make_address("192.0.2.1");
auto const Second = boost::asio::ip::make_address("192.0.2.2");

TEST(ConnectionCount, AdmitsConnectionsUpToTheirNumberInAll) {
    ConnectionCount count;
    ConnectionLimits const limits{.connections = 2, .connectionsPerAddress = 2};
    auto const one = count.Add(First, limits);
    auto const two = count.Add(Second, limits);
    EXPECT_TRUE(one && two);
    EXPECT_FALSE(count.Add(First, limits));
    EXPECT_EQ(count.Get(), 2U);
}

TEST(ConnectionCount, AdmitsConnectionsUpToTheirNumberPerAddress) {
    ConnectionCount count;
    ConnectionLimits const limits{.connections = 10, .connectionsPerAddress = 1};
    auto const one = count.Add(First, limits);
    EXPECT_FALSE(count.Add(First, limits));
    EXPECT_TRUE(count.Add(Second, limits));
}

TEST(ConnectionCount, CountsAConnectionUntilTheLastCopyOfItsSlotGoes) {
    ConnectionCount count;
    ConnectionLimits const limits{.connections = 1, .connectionsPerAddress = 1};
    auto slot = count.Add(First, limits);
    auto copy = slot;
    slot.reset();
    EXPECT_FALSE(count.Add(First, limits));
    copy.reset();
    EXPECT_EQ(count.Get(), 0U);
    EXPECT_TRUE(count.Add(First, limits));
}

TEST(ConnectionCount, MayEndBeforeItsSlots) {
    std::optional<ConnectionCount> count(std::in_place);
    auto slot = count->Add(First, {});
    count.reset();
    EXPECT_NO_THROW(slot.reset());
}

TEST(ConnectionCount, AppliesALoweredLimitToNewConnections) {
    ConnectionCount count;
    auto const one = count.Add(First, {.connections = 10});
    auto const two = count.Add(First, {.connections = 10});
    EXPECT_FALSE(count.Add(Second, {.connections = 1}));
}

} // namespace
} // namespace zarn::host
