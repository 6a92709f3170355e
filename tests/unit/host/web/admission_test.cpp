#include "host/web/admission.h"

#include <gtest/gtest.h>

#include <optional>

namespace zarn::host::web {
namespace {

auto const First = boost::asio::ip::make_address("192.0.2.1");
auto const Second = boost::asio::ip::make_address("192.0.2.2");

TEST(Admission, TakesConnectionsUpToTheirNumberInAll) {
    Admission admission;
    Limits const limits{.connections = 2, .connectionsPerAddress = 2};
    auto const one = admission.Connect(First, limits);
    auto const two = admission.Connect(Second, limits);
    EXPECT_TRUE(one && two);
    EXPECT_FALSE(admission.Connect(First, limits));
    EXPECT_EQ(admission.GetConnections(), 2U);
}

TEST(Admission, TakesConnectionsUpToTheirNumberPerAddress) {
    Admission admission;
    Limits const limits{.connections = 10, .connectionsPerAddress = 1};
    auto const one = admission.Connect(First, limits);
    EXPECT_FALSE(admission.Connect(First, limits));
    EXPECT_TRUE(admission.Connect(Second, limits));
}

TEST(Admission, GivesAPlaceBackWhenTheLastCopyOfItsSlotGoes) {
    Admission admission;
    Limits const limits{.connections = 1, .connectionsPerAddress = 1};
    auto slot = admission.Connect(First, limits);
    auto copy = slot;
    slot.reset();
    EXPECT_FALSE(admission.Connect(First, limits));
    copy.reset();
    EXPECT_EQ(admission.GetConnections(), 0U);
    EXPECT_TRUE(admission.Connect(First, limits));
}

TEST(Admission, TakesExchangesUpToTheirNumber) {
    Admission admission;
    Limits const limits{.exchanges = 1};
    auto slot = admission.BeginExchange(limits);
    EXPECT_TRUE(slot);
    EXPECT_FALSE(admission.BeginExchange(limits));
    EXPECT_EQ(admission.GetExchanges(), 1U);
    slot.reset();
    EXPECT_TRUE(admission.BeginExchange(limits));
}

TEST(Admission, MayGoBeforeItsSlots) {
    std::optional<Admission> admission(std::in_place);
    auto connection = admission->Connect(First, {});
    auto exchange = admission->BeginExchange({});
    admission.reset();
    EXPECT_NO_THROW(connection.reset());
    EXPECT_NO_THROW(exchange.reset());
}

TEST(Admission, RefusesWhatALowerLimitNoLongerHasRoomFor) {
    Admission admission;
    auto const one = admission.Connect(First, {.connections = 10});
    auto const two = admission.Connect(First, {.connections = 10});
    EXPECT_FALSE(admission.Connect(Second, {.connections = 1}));
}

} // namespace
} // namespace zarn::host::web
