#include "host/web/acceptor.h"
#include "support/raw_connection.h"
#include "web/io_thread.h"

#include <zarn/logging/capture.h>

#include <boost/asio/io_context.hpp>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <future>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

/// What the next accept() fails with; 0: it does not. Linux itself hardly ever reports that a client has gone.
std::atomic<int> NextError = 0;

} // namespace

/// In the place of the system's function.
extern "C" int accept(int socket, sockaddr* address, socklen_t* size) {
    static auto* const real = reinterpret_cast<decltype(&accept)>(dlsym(RTLD_NEXT, "accept"));
    if (int const error = NextError.exchange(0); error != 0) {
        errno = error;
        return -1;
    }
    return real(socket, address, size);
}

namespace zarn::host::web {
namespace {

constexpr std::chrono::seconds LongestWait{60};

/// Clients that are connected, and wait to be accepted.
std::vector<std::unique_ptr<test::RawConnection>> Connect(Listener const& listener, std::size_t count) {
    std::vector<std::unique_ptr<test::RawConnection>> clients;
    while (clients.size() < count) clients.push_back(std::make_unique<test::RawConnection>(listener.GetPort()));
    return clients;
}

TEST(Acceptor, LeavesOtherHandlersTheirTurnDuringABurst) {
    constexpr std::size_t Count = 40;
    boost::asio::io_context io;
    Listener listener(io, 0);
    auto const clients = Connect(listener, Count);
    std::size_t accepted = 0;
    auto const acceptor = std::make_shared<Acceptor>(io, std::move(listener), [&](Socket) { ++accepted; });
    acceptor->Start();
    std::size_t most = 0;
    while (accepted < Count) {
        auto const before = accepted;
        ASSERT_EQ(io.run_one_for(LongestWait), 1U);
        most = std::max(most, accepted - before);
    }
    EXPECT_LE(most, 16U);
}

TEST(Acceptor, HandsOverEveryWaitingConnectionWhenItCloses) {
    constexpr std::size_t Count = 40;
    IoThread io;
    Listener listener(io.GetContext(), 0);
    auto const clients = Connect(listener, Count);
    std::size_t accepted = 0;
    auto const acceptor = std::make_shared<Acceptor>(io.GetContext(), std::move(listener), [&](Socket) { ++accepted; });
    acceptor->Close();
    EXPECT_EQ(accepted, Count);
}

TEST(Acceptor, AcceptsTheNextConnectionAfterOneFailed) {
    logging::Capture const capture;
    IoThread io;
    Listener listener(io.GetContext(), 0);
    auto const clients = Connect(listener, 2);
    std::size_t accepted = 0;
    auto const acceptor = std::make_shared<Acceptor>(io.GetContext(), std::move(listener), [&](Socket) {
        if (++accepted == 1) throw std::runtime_error("no room");
    });
    acceptor->Close();
    EXPECT_EQ(accepted, 2U);
    EXPECT_EQ(capture.GetLines().size(), 1U);
    EXPECT_TRUE(capture.Contains("A connection was lost: no room"));
}

TEST(Acceptor, WaitsForNoOtherConnectionWhenAClientHasGone) {
    for (int const error : {ECONNABORTED, EPROTO}) {
        IoThread io;
        auto const acceptor = std::make_shared<Acceptor>(io.GetContext(), Listener(io.GetContext(), 0), [](Socket) {});
        NextError = error;
        auto const closed = std::async(std::launch::async, [&] { acceptor->Close(); });
        ASSERT_EQ(closed.wait_for(LongestWait), std::future_status::ready) << error;
        EXPECT_EQ(NextError, 0);
    }
}

} // namespace
} // namespace zarn::host::web
