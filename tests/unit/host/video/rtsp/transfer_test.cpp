#include "host/video/rtsp/transfer.h"
#include "unit/host/video/rtsp/served_stream.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace zarn::host::video::rtsp {
namespace {

using namespace std::chrono_literals;

class RtspTransfer : public testing::Test {
protected:
    /// Lets an access unit with these payloads wait.
    void Publish(std::vector<std::string> payloads) {
        track->queue.Start({MakeUnit(true, std::move(payloads), ++count)}, 0ms);
    }

    /// Sends a transfer to its end, at most `most` bytes at a time.
    static std::string Send(Transfer& transfer, std::size_t most) {
        std::string all;
        while (!transfer.IsDone()) {
            PacketParts parts;
            transfer.Gather(parts);
            std::string bytes;
            for (auto const& part : parts.GetParts())
                bytes.append(static_cast<char const*>(part.iov_base), part.iov_len);
            bytes.resize(std::min(bytes.size(), most));
            transfer.Advance(bytes.size());
            all += bytes;
        }
        return all;
    }

    static std::vector<std::string> MakeLongUnit() { return std::vector<std::string>(200, std::string(100, 'x')); }

    std::shared_ptr<Track> track = std::make_shared<Track>();
    std::uint64_t count = 0;
};

TEST_F(RtspTransfer, FramesPacketsWithChannelAndLength) {
    track->channel = 4;
    auto const sequence = track->sender.GetSequence();
    Publish({"first", "last"});
    Transfer transfer(track, Transfer::Framing::Interleaved);
    auto const bytes = Send(transfer, 1000);
    ASSERT_EQ(bytes.size(), 4 + 12 + 5 + 4 + 12 + 4U);
    EXPECT_EQ(bytes.substr(0, 4), std::string("$\x04\x00\x11", 4));
    EXPECT_EQ(bytes.substr(16, 5), "first");
    EXPECT_EQ(bytes.substr(21, 4), std::string("$\x04\x00\x10", 4));
    EXPECT_EQ(bytes.substr(37), "last");
    EXPECT_EQ(track->sender.GetSequence(), static_cast<std::uint16_t>(sequence + 2));
}

TEST_F(RtspTransfer, SendsTheSameHoweverLittleTheSocketTakes) {
    auto const sequence = track->sender;
    Publish(MakeLongUnit());
    Transfer whole(track, Transfer::Framing::Interleaved);
    auto const expected = Send(whole, 1000000);
    for (std::size_t const most : {1, 3, 7, 115, 116, 117, 5000}) {
        track->sender = sequence;
        Publish(MakeLongUnit());
        Transfer transfer(track, Transfer::Framing::Interleaved);
        EXPECT_EQ(Send(transfer, most), expected) << most;
    }
}

TEST_F(RtspTransfer, TakesItsSequenceNumbersAtTheBeginning) {
    auto const first = track->sender.GetSequence();
    Publish({"first", "last"});
    Transfer transfer(track, Transfer::Framing::None);
    EXPECT_EQ(track->sender.GetSequence(), static_cast<std::uint16_t>(first + 2)) << "of the next access unit";
    PacketParts parts;
    transfer.Gather(parts);
    auto const* header = static_cast<unsigned char const*>(parts.GetParts()[2].iov_base);
    EXPECT_EQ(header[2] * 256 + header[3], static_cast<std::uint16_t>(first + 1));
}

TEST_F(RtspTransfer, SendsWholePacketsAsDatagrams) {
    Publish(MakeLongUnit());
    Transfer transfer(track, Transfer::Framing::None);
    std::size_t packets = 0;
    while (!transfer.IsDone()) {
        PacketParts parts;
        transfer.Gather(parts);
        EXPECT_EQ(parts.GetParts()[0].iov_len, 12U);
        EXPECT_EQ(parts.GetParts()[1].iov_len, 100U);
        packets += parts.GetCount();
        transfer.AdvancePackets(parts.GetCount());
    }
    EXPECT_EQ(packets, 200U);
}

TEST_F(RtspTransfer, IsDoneAtOnceWithoutPackets) {
    auto const unit = MakeUnit(true, {}, 1);
    unit->packets = nullptr;
    track->queue.Start({unit}, 0ms);
    EXPECT_TRUE(Transfer(track, Transfer::Framing::Interleaved).IsDone());
}

} // namespace
} // namespace zarn::host::video::rtsp
