#include "inbox.h"
#include "support/failing_socket.h"
#include "support/peer.h"
#include "unwatchable.h"

#include <zarn/asio/io_context.h>
#include <zarn/logging/capture.h>
#include <zarn/protocol/network/udp/receiver.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <future>
#include <iterator>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace zarn::protocol::network::udp {
namespace {

using boost::asio::ip::make_address;
using test::FindFreePort;
using test::Peer;

constexpr unsigned long Size = 65535;

class ReceiverTest : public testing::Test {
protected:
    std::unique_ptr<Receiver> Make(Receiver::Callback callback, unsigned long size = Size) {
        return std::make_unique<Receiver>(context.Get(), port, boost::none, size, std::move(callback));
    }

    /// A receiver that delivers to the inbox.
    void Start(unsigned long size = Size) {
        receiver = Make(inbox.MakeCallback(), size);
        receiver->Start();
    }

    std::string ReasonWhyNotStarted(Receiver& other) {
        try {
            other.Start();
        } catch (std::runtime_error const& error) {
            return error.what();
        }
        return "it has started";
    }

    void SendTo(std::string const& text) { ASSERT_TRUE(peer.Send(text, "127.0.0.1", port)); }

    /// Runs `work` on the context's thread and waits for it.
    void RunInside(std::function<void()> work) {
        auto const done = std::make_shared<std::promise<void>>(); // the handler may outlive this function
        boost::asio::post(context.Get(), [&work, done] {
            work();
            done->set_value();
        });
        done->get_future().get();
    }

    /// Waits until the context's thread has handled all received datagrams, which it does before it handles a timer.
    void RunLater() {
        std::promise<void> done;
        boost::asio::steady_timer timer(context.Get(), std::chrono::milliseconds(1));
        timer.async_wait([&](boost::system::error_code) { done.set_value(); });
        done.get_future().get();
        RunInside([] {});
    }

    unsigned short port = FindFreePort();
    Peer peer{"127.0.0.1"};
    test::Inbox inbox;
    asio::IoContext context{1};
    std::unique_ptr<Receiver> receiver;

    void TearDown() override { context.Stop(); }
};

TEST_F(ReceiverTest, DeliversADatagramWithItsSource) {
    Start();
    SendTo("hello");
    ASSERT_TRUE(inbox.WaitFor("hello"));
    auto const item = inbox.GetItems().front();
    EXPECT_FALSE(item.error);
    EXPECT_EQ(item.source, boost::asio::ip::udp::endpoint(make_address("127.0.0.1"), peer.GetPort()));
}

TEST_F(ReceiverTest, DeliversDatagramsInOrder) {
    Start();
    for (auto const* text : {"1", "", "3"}) SendTo(text);
    ASSERT_TRUE(inbox.WaitFor("3"));
    EXPECT_EQ(inbox.GetTexts(), (std::vector<std::string>{"1", "", "3"}));
}

TEST_F(ReceiverTest, BindsNothingBeforeItsStart) {
    auto const first = Make(inbox.MakeCallback());
    auto const second = Make(inbox.MakeCallback());
    EXPECT_TRUE(Peer("0.0.0.0", port).IsBound());
    second->Start();
    EXPECT_FALSE(Peer("0.0.0.0", port).IsBound());
    context.Stop();
}

TEST_F(ReceiverTest, DeliversATruncatedDatagramAsAnError) {
    Start(4);
    SendTo("12345");
    SendTo("1234");
    ASSERT_TRUE(inbox.WaitForError({}));
    auto const items = inbox.GetItems();
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].error, boost::asio::error::message_size);
    EXPECT_EQ(items[0].text, "1234");
    EXPECT_EQ(items[1].text, "1234");
}

TEST_F(ReceiverTest, ContinuesWhenTheCallbackThrows) {
    logging::Capture const capture;
    receiver = Make(inbox.MakeCallback([calls = 0]() mutable -> Operation {
        if (++calls == 1) throw std::runtime_error("too hard");
        return Operation::Continue;
    }));
    receiver->Start();
    SendTo("first");
    SendTo("second");
    ASSERT_TRUE(inbox.WaitFor("second"));
    EXPECT_TRUE(capture.Contains("too hard"));
}

TEST_F(ReceiverTest, StopsReceivingWhenTheCallbackReturnsStop) {
    receiver = Make(inbox.MakeCallback([] { return Operation::Stop; }));
    receiver->Start();
    SendTo("first");
    ASSERT_TRUE(inbox.WaitFor("first"));
    SendTo("second");
    RunLater();
    EXPECT_EQ(inbox.Count("second"), 0U);
    EXPECT_FALSE(Peer("0.0.0.0", port).IsBound()); // the port is still in use by the receiver
}

TEST_F(ReceiverTest, FreesThePortWhenItIsDestroyed) {
    Start();
    RunInside([&] { receiver.reset(); });
    EXPECT_TRUE(Peer("0.0.0.0", port).IsBound());
}

TEST_F(ReceiverTest, CallsNothingOnceItIsDestroyed) {
    Start();
    RunInside([&] {
        for (int i = 0; i < 10; ++i) SendTo("late"); // queued before the receiver is destroyed
        receiver.reset();
    });
    RunInside([] {});
    EXPECT_EQ(inbox.Count("late"), 0U);
}

TEST_F(ReceiverTest, MayBeDestroyedByItsCallback) {
    receiver = Make(inbox.MakeCallback([&] {
        receiver.reset();
        return Operation::Continue;
    }));
    receiver->Start();
    SendTo("first");
    SendTo("second");
    ASSERT_TRUE(inbox.WaitFor("first"));
    RunInside([] {});
    EXPECT_EQ(inbox.Count("second"), 0U);
    EXPECT_TRUE(Peer("0.0.0.0", port).IsBound());
}

TEST_F(ReceiverTest, MayBeReplacedByItsCallback) {
    bool replaced = false;
    receiver = Make(inbox.MakeCallback([&] {
        receiver.reset();
        Start();
        replaced = true;
        return Operation::Continue;
    }));
    receiver->Start();
    SendTo("first");
    ASSERT_TRUE(inbox.WaitFor("first"));
    RunInside([&] { EXPECT_TRUE(replaced); });
    SendTo("second");
    EXPECT_TRUE(inbox.WaitFor("second"));
}

TEST_F(ReceiverTest, MayBeDestroyedElsewhereOnceTheContextHasStopped) {
    Start();
    context.Stop();
    SendTo("late");
    receiver.reset();
    EXPECT_TRUE(Peer("0.0.0.0", port).IsBound());
    EXPECT_TRUE(inbox.GetItems().empty());
}

TEST_F(ReceiverTest, DestroysItsCallbackWithTheContextAtTheLatest) {
    auto const held = std::make_shared<int>();
    {
        asio::IoContext other(1);
        Receiver shortLived(other.Get(), port, boost::none, Size,
                            [held](auto const&...) { return Operation::Continue; });
        shortLived.Start();
        other.Stop();
    }
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(ReceiverTest, ContinuesWhenReceivingFails) {
    Start();
    SendTo("first");
    ASSERT_TRUE(inbox.WaitFor("first"));
    {
        test::FailingSocket const failing(port);
        EXPECT_TRUE(inbox.WaitForError(boost::asio::error::connection_refused));
    }
    SendTo("second");
    EXPECT_TRUE(inbox.WaitFor("second"));
}

TEST_F(ReceiverTest, LimitsTheRateOfDatagramsFromOneSource) {
    Start();
    logging::Capture const capture;
    auto const begin = std::chrono::steady_clock::now();
    for (int i = 0; i < 200; ++i) SendTo("flood");
    Peer const other("127.0.0.2");
    ASSERT_TRUE(other.Send("quiet", "127.0.0.1", port));
    ASSERT_TRUE(inbox.WaitFor("quiet"));
    auto const seconds = std::chrono::ceil<std::chrono::seconds>(std::chrono::steady_clock::now() - begin).count();
    EXPECT_GE(inbox.Count("flood"), 20U);
    EXPECT_LE(inbox.Count("flood"), 20U + 10U * static_cast<std::size_t>(seconds));
    EXPECT_TRUE(capture.Contains("Refused a datagram from 127.0.0.1: too many lately"));
    EXPECT_LE(capture.GetLines().size(), static_cast<std::size_t>(seconds)) << "logged more than once per second";
}

class TakenPort : public ReceiverTest, public testing::WithParamInterface<int> {};

TEST_P(TakenPort, FailsTheStartUntilItIsFree) {
    std::optional<Peer> holder(std::in_place, "0.0.0.0", port, GetParam());
    ASSERT_TRUE(holder->IsBound());
    receiver = Make(inbox.MakeCallback());
    EXPECT_EQ(ReasonWhyNotStarted(*receiver),
              "Failed to receive at UDP port " + std::to_string(port) + ": Address already in use");
    holder.reset();
    receiver->Start();
    SendTo("hello");
    EXPECT_TRUE(inbox.WaitFor("hello"));
}

TEST_P(TakenPort, CannotBeTakenFromARunningReceiver) {
    Start();
    EXPECT_FALSE(Peer("0.0.0.0", port, GetParam()).IsBound());
    EXPECT_FALSE(Peer("127.0.0.1", port, GetParam()).IsBound());
    EXPECT_FALSE(Peer("239.255.255.250", port, GetParam()).IsBound());
}

INSTANTIATE_TEST_SUITE_P(Holders, TakenPort, testing::Values(0, SO_REUSEADDR, SO_REUSEPORT), [](auto const& each) {
    return each.param == 0 ? "Plain" : each.param == SO_REUSEADDR ? "ReuseAddress" : "ReusePort";
});

TEST_F(ReceiverTest, CannotStartTwice) {
    Start();
    EXPECT_EQ(ReasonWhyNotStarted(*receiver),
              "Failed to receive at UDP port " + std::to_string(port) + ": it has been started before");
    SendTo("hello");
    EXPECT_TRUE(inbox.WaitFor("hello"));
}

std::ptrdiff_t CountDescriptors() { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); }

TEST_F(ReceiverTest, LeaksNoDescriptorWhenEpollFails) {
    receiver = Make(inbox.MakeCallback());
    auto const before = CountDescriptors();
    for (int i = 0; i < 10; ++i) {
        test::Unwatchable const unwatchable;
        EXPECT_NE(ReasonWhyNotStarted(*receiver).find("No space left on device"), std::string::npos);
    }
    EXPECT_EQ(CountDescriptors(), before);
    receiver->Start();
    SendTo("hello");
    EXPECT_TRUE(inbox.WaitFor("hello"));
}

TEST_F(ReceiverTest, RefusesABufferOfAnImpossibleSize) {
    auto const empty = Make(inbox.MakeCallback(), 0);
    EXPECT_NE(ReasonWhyNotStarted(*empty).find("a buffer of 0 bytes is not one of 1 to 65535"), std::string::npos);
    auto const huge = Make(inbox.MakeCallback(), 65536);
    EXPECT_NE(ReasonWhyNotStarted(*huge).find("a buffer of 65536 bytes is not"), std::string::npos);
    EXPECT_TRUE(Peer("0.0.0.0", port).IsBound());
}

TEST_F(ReceiverTest, RefusesAnInvalidGroup) {
    for (auto const* group : {"10.0.0.1", "255.255.255.255", "ff02::c"}) {
        Receiver other(context.Get(), port, make_address(group), Size, inbox.MakeCallback());
        EXPECT_EQ(ReasonWhyNotStarted(other), "Failed to receive at UDP port " + std::to_string(port) + " for group " +
                                                  group + ": the group is no IPv4 multicast address");
    }
    EXPECT_TRUE(Peer("0.0.0.0", port).IsBound());
}

} // namespace
} // namespace zarn::protocol::network::udp
