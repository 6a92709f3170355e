#include "support/machine.h"
#include "support/no_descriptors.h"
#include "support/peer.h"

#include <zarn/asio/io_context.h>
#include <zarn/container/buffer.h>
#include <zarn/protocol/network/udp/sender.h>

#include <boost/asio/io_context.hpp>
#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <string>
#include <thread>

namespace zarn::protocol::network::udp {
namespace {

using boost::asio::ip::make_address;
using boost::system::error_code;
using test::NoDescriptors;
using test::Peer;

std::shared_ptr<container::Buffer> MakeBuffer(std::string text) {
    return std::make_shared<container::Buffer>(std::move(text));
}

/// Sends a datagram and waits for completion.
error_code Send(asio::IoContext& context, std::string const& address, unsigned short port, std::string text) {
    auto const result = std::make_shared<std::promise<error_code>>(); // the completion may outlive this function
    auto const sender =
        std::make_shared<Sender>(context.Get(), boost::asio::ip::udp::endpoint(make_address(address), port));
    sender->Send(MakeBuffer(std::move(text)), [result, sender](error_code const& error) { result->set_value(error); });
    return result->get_future().get();
}

TEST(Sender, SendsADatagramToItsEndpoint) {
    asio::IoContext context(1);
    Peer const peer("127.0.0.1");
    EXPECT_FALSE(Send(context, "127.0.0.1", peer.GetPort(), "hello"));
    EXPECT_EQ(peer.Receive(), "hello");
}

TEST(Sender, SendsSeveralDatagrams) {
    asio::IoContext context(1);
    Peer const peer("127.0.0.1");
    Sender sender(context.Get(), {make_address("127.0.0.1"), peer.GetPort()});
    for (auto const* text : {"1", "", "3"}) sender.Send(MakeBuffer(text), [](error_code const&) {});
    EXPECT_EQ(peer.Receive(), "1");
    EXPECT_EQ(peer.Receive(), "");
    EXPECT_EQ(peer.Receive(), "3");
    context.Stop();
}

TEST(Sender, CompletesOnTheContextsThread) {
    std::promise<std::thread::id> thread;
    asio::IoContext context(1);
    Sender sender(context.Get(), {make_address("127.0.0.1"), test::FindFreePort()});
    sender.Send(MakeBuffer("x"), [&](error_code const&) { thread.set_value(std::this_thread::get_id()); });
    EXPECT_NE(thread.get_future().get(), std::this_thread::get_id());
    context.Stop();
}

TEST(Sender, ReportsAnOversizedDatagram) {
    asio::IoContext context(1);
    EXPECT_EQ(Send(context, "127.0.0.1", test::FindFreePort(), std::string(65'508, 'x')),
              boost::asio::error::message_size);
}

TEST(Sender, ReportsAMissingRoute) {
    test::Machine const host;
    if (!host.Exists()) GTEST_SKIP() << host.WhyNot();
    host.Run([] {
        asio::IoContext context(1);
        EXPECT_EQ(Send(context, "10.0.0.1", 3702, "hello"), boost::asio::error::network_unreachable);
    });
}

#ifndef ZARN_SANITIZED_ADDRESSES // UBSan's type check opens pipes
TEST(Sender, ReportsALackOfDescriptors) {
    asio::IoContext context(1);
    Sender const first(context.Get(), {make_address("127.0.0.1"), 9}); // the context opens its own descriptors
    NoDescriptors const none;
    EXPECT_EQ(Send(context, "127.0.0.1", 3702, "hello"), boost::asio::error::no_descriptors);
}
#endif

TEST(Sender, IsReleasedWithTheContextWhenItNeverCompletes) {
    std::weak_ptr<Sender> observed;
    {
        asio::IoContext context(1);
        context.Stop();
        auto const sender =
            std::make_shared<Sender>(context.Get(), boost::asio::ip::udp::endpoint(make_address("127.0.0.1"), 9));
        observed = sender;
        sender->Send(MakeBuffer("x"), [sender](error_code const&) { FAIL(); });
    }
    EXPECT_TRUE(observed.expired());
}

} // namespace
} // namespace zarn::protocol::network::udp
