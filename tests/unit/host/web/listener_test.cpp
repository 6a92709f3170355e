#include "host/web/listener.h"
#include "support/raw_connection.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace zarn::host::web {
namespace {

TEST(Listener, BindsAFreePortForPortZero) {
    boost::asio::io_context io;
    EXPECT_NE(Listener(io, 0).GetPort(), 0);
}

TEST(Listener, QueuesConnectionsBeforeTheyAreAccepted) {
    boost::asio::io_context io;
    Listener const listener(io, 0);
    EXPECT_NO_THROW(test::RawConnection(listener.GetPort()));
}

TEST(Listener, NamesThePortThatItCannotBind) {
    boost::asio::io_context io;
    Listener const first(io, 0);
    try {
        Listener const second(io, first.GetPort());
        FAIL() << "a second listener bound the same port";
    } catch (std::runtime_error const& error) {
        EXPECT_EQ(error.what(),
                  "web port " + std::to_string(first.GetPort()) + " cannot be bound: Address already in use");
    }
}

} // namespace
} // namespace zarn::host::web
