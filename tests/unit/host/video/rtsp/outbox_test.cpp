#include "host/video/rtsp/outbox.h"
#include "unit/host/video/rtsp/served_stream.h"

#include <zarn/io/unique_descriptor.h>

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <array>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace zarn::host::video::rtsp {
namespace {

using namespace std::chrono_literals;

/// The outlet of sessions whose packets a test sends itself.
class Nowhere final : public Outlet {
public:
    void Flush() override {}

    void SendControl(Track const&, std::string) override {}
};

/// A connection to a client that reads when the test says so.
class RtspOutbox : public ServedStreamTest {
protected:
    RtspOutbox() {
        std::array<int, 2> ends{};
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends.data()) == 0) {
            server = io::UniqueDescriptor(ends[0]);
            client = io::UniqueDescriptor(ends[1]);
        }
    }

    /// A session over the connection.
    Track& AddSession(std::uint8_t channel) {
        sessions.push_back(MakeSession());
        return sessions.back()->SetUp(0, channel, outlet);
    }

    /// Lets an access unit of some packets of a kilobyte wait.
    void Publish(Track& track, std::size_t packets) {
        track.queue.Start({MakeUnit(true, std::vector<std::string>(packets, std::string(1024, 'x')), ++count)}, 0ms);
    }

    Outbox::Result Send() { return outbox.Send(server.Get(), sessions); }

    /// What has arrived.
    std::string Receive() {
        std::string all;
        std::array<char, 65536> part{};
        for (ssize_t size = 0; (size = recv(client.Get(), part.data(), part.size(), 0)) > 0;)
            all.append(part.data(), static_cast<std::size_t>(size));
        return all;
    }

    io::UniqueDescriptor server;
    io::UniqueDescriptor client;
    Nowhere outlet;
    std::vector<std::shared_ptr<Session>> sessions;
    Outbox outbox;
    std::uint64_t count = 0;
};

constexpr std::size_t PacketSize = 4 + 12 + 1024;

TEST_F(RtspOutbox, SendsTextsInOrderAndThenAccessUnits) {
    Publish(AddSession(0), 2);
    outbox.Add("first");
    outbox.Add("second");
    EXPECT_EQ(Send(), Outbox::Result::Empty);
    auto const received = Receive();
    EXPECT_EQ(received.substr(0, 12), "firstsecond$");
    EXPECT_EQ(received.size(), 11 + 2 * PacketSize);
    EXPECT_TRUE(outbox.TakeProgress());
    EXPECT_FALSE(outbox.TakeProgress());
}

TEST_F(RtspOutbox, FinishesAnAccessUnitBeforeAnythingElse) {
    constexpr std::size_t Packets = 4000;
    Publish(AddSession(0), Packets);
    std::string received;
    while (Send() != Outbox::Result::Full) received += Receive();
    ASSERT_LT(received.size(), Packets * PacketSize);
    outbox.Add("text");
    for (auto result = Outbox::Result::Full; result != Outbox::Result::Empty; result = Send()) received += Receive();
    received += Receive();
    EXPECT_EQ(received.size(), Packets * PacketSize + 4);
    EXPECT_TRUE(received.ends_with("text"));
    for (std::size_t at = 0; at < Packets * PacketSize; at += PacketSize) ASSERT_EQ(received[at], '$') << at;
}

TEST_F(RtspOutbox, StopsAfterATurn) {
    int const more = 2 * static_cast<int>(Outbox::Turn); // than a turn fits into the socket then
    setsockopt(server.Get(), SOL_SOCKET, SO_SNDBUF, &more, sizeof(more));
    Publish(AddSession(0), 4000);
    for (int turn = 0; turn < 3; ++turn) {
        ASSERT_EQ(Send(), Outbox::Result::More);
        auto const size = Receive().size();
        EXPECT_GE(size, Outbox::Turn);
        EXPECT_LE(size, Outbox::Turn + PacketParts::MaximumPackets * PacketSize);
    }
}

TEST_F(RtspOutbox, GivesEverySessionItsTurn) {
    auto& first = AddSession(0);
    auto& second = AddSession(2);
    Publish(first, 1);
    Publish(first, 1);
    Publish(second, 1);
    EXPECT_EQ(Send(), Outbox::Result::Empty);
    auto const received = Receive();
    ASSERT_EQ(received.size(), 3 * PacketSize);
    EXPECT_EQ(received[1], 0);
    EXPECT_EQ(received[PacketSize + 1], 2);
    EXPECT_EQ(received[2 * PacketSize + 1], 0);
}

TEST_F(RtspOutbox, HasNoRoomForMoreThanAClientReads) {
    outbox.Add(std::string(Outbox::MaximumTexts - 1, 'x'));
    EXPECT_TRUE(outbox.HasRoom());
    outbox.Add("x");
    EXPECT_FALSE(outbox.HasRoom());
    EXPECT_EQ(Send(), Outbox::Result::Empty);
    EXPECT_TRUE(outbox.HasRoom());
    EXPECT_TRUE(outbox.HasSentTexts());
}

TEST_F(RtspOutbox, FailsWhenTheClientHasGone) {
    client = io::UniqueDescriptor();
    outbox.Add("text");
    EXPECT_EQ(Send(), Outbox::Result::Failed);
}

} // namespace
} // namespace zarn::host::video::rtsp
