#include "host/web/admission.h"

#include <boost/asio/ip/address.hpp>
#include <gtest/gtest.h>

#include <optional>

namespace zarn::host::web {
namespace {

auto const First = boost::asio::ip::make_address("192.0.2.1");
auto const Second = boost::asio::ip::make_address("192.0.2.2");

TEST(Admission, TakesConnectionsUpToBothOfTheirLimits) {
    Admission admission;
    Limits const limits{.connections = 2, .connectionsPerAddress = 1};
    auto const one = admission.Connect(First, limits);
    EXPECT_FALSE(admission.Connect(First, limits));
    auto const two = admission.Connect(Second, limits);
    EXPECT_TRUE(one && two);
    EXPECT_FALSE(admission.Connect(boost::asio::ip::make_address("192.0.2.3"), limits));
    EXPECT_EQ(admission.GetConnections(), 2U);
}

TEST(Admission, LimitsTheNumberOfExchanges) {
    Admission admission;
    Limits const limits{.exchanges = 1};
    auto slot = admission.BeginExchange(limits);
    EXPECT_TRUE(slot);
    EXPECT_FALSE(admission.BeginExchange(limits));
    EXPECT_EQ(admission.GetExchanges(), 1U);
    slot.reset();
    EXPECT_TRUE(admission.BeginExchange(limits));
}

TEST(Admission, MayBeDestroyedBeforeItsSlots) {
    std::optional<Admission> admission(std::in_place);
    auto connection = admission->Connect(First, {});
    auto exchange = admission->BeginExchange({});
    admission.reset();
    EXPECT_NO_THROW(connection.reset());
    EXPECT_NO_THROW(exchange.reset());
}

} // namespace
} // namespace zarn::host::web
