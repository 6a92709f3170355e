#include "host/video/rtp/sender.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <string>

namespace zarn::host::video::rtp {
namespace {

using namespace std::chrono_literals;

/// A big-endian number in a text.
std::uint32_t Read(std::string_view text, std::size_t at, std::size_t size = 4) {
    std::uint32_t number = 0;
    for (std::size_t index = 0; index < size; ++index)
        number = number << 8 | static_cast<unsigned char>(text.substr(at)[index]);
    return number;
}

std::string WriteHeader(Sender const& sender, bool marker, std::size_t ahead, std::uint32_t timestamp) {
    Packet packet;
    packet.marker = marker;
    std::array<std::byte, Sender::HeaderSize> header{};
    auto const number = static_cast<std::uint16_t>(sender.GetSequence() + ahead);
    sender.WriteHeader(header.data(), packet, 96, number, timestamp);
    return {reinterpret_cast<char const*>(header.data()), header.size()};
}

TEST(RtpSender, WritesHeaders) {
    Sender const sender;
    auto const header = WriteHeader(sender, true, 0, 0x01020304);
    EXPECT_EQ(Read(header, 0, 1), 0x80U);
    EXPECT_EQ(Read(header, 1, 1), 0x80U | 96U);
    EXPECT_EQ(Read(header, 2, 2), sender.GetSequence());
    EXPECT_EQ(Read(header, 4), 0x01020304U);
    EXPECT_EQ(Read(header, 8), sender.GetSource());
    EXPECT_EQ(Read(WriteHeader(sender, false, 0, 0), 1, 1), 96U);
}

TEST(RtpSender, NumbersPacketsWithoutAGap) {
    Sender sender;
    auto const first = sender.GetSequence();
    EXPECT_EQ(Read(WriteHeader(sender, false, 2, 0), 2, 2), static_cast<std::uint16_t>(first + 2));
    EXPECT_EQ(sender.TakeSequence(65535), first);
    EXPECT_EQ(sender.GetSequence(), static_cast<std::uint16_t>(first - 1));
}

TEST(RtpSender, TellsEveryViewerAnotherSource) { EXPECT_NE(Sender().GetSource(), Sender().GetSource()); }

TEST(RtpSender, CountsTimeInTicksOfTheClock) {
    Sender const sender;
    auto const first = sender.ToTimestamp(0s, 90000);
    EXPECT_EQ(sender.ToTimestamp(40ms, 90000) - first, 3600U);
    EXPECT_EQ(sender.ToTimestamp(std::chrono::hours(24 * 365), 90000) - first,
              static_cast<std::uint32_t>(std::uint64_t{90000} * 3600 * 24 * 365));
}

TEST(RtpSender, ReportsTimeAndCounts) {
    Sender sender;
    sender.Count(3, 4000);
    auto const report = sender.MakeReport(std::chrono::system_clock::time_point(1500ms), 77);
    EXPECT_EQ(Read(report, 0, 2), 0x80C8U);
    EXPECT_EQ(Read(report, 2, 2), 6U);
    EXPECT_EQ(Read(report, 4), sender.GetSource());
    EXPECT_EQ(Read(report, 8), 2208988801U);
    EXPECT_EQ(Read(report, 12), 0x80000000U);
    EXPECT_EQ(Read(report, 16), 77U);
    EXPECT_EQ(Read(report, 20), 3U);
    EXPECT_EQ(Read(report, 24), 4000U);
    EXPECT_TRUE(IsRtcp(report));
}

TEST(RtpSender, NamesItselfInWholeWords) {
    Sender const sender;
    auto const report = sender.MakeReport({}, 0);
    auto const description = report.substr(28);
    EXPECT_EQ(Read(description, 0, 2), 0x81CAU);
    EXPECT_EQ(description.size(), 4 * (Read(description, 2, 2) + 1));
    EXPECT_EQ(Read(description, 4), sender.GetSource());
    EXPECT_EQ(Read(description, 8, 2), 0x0108U);
    EXPECT_EQ(description.substr(10, 8), sender.GetName());
    EXPECT_EQ(std::stoul(sender.GetName(), nullptr, 16), sender.GetSource());
    EXPECT_EQ(description.back(), '\0');
}

TEST(RtpSender, SaysGoodbye) {
    Sender const sender;
    auto const packet = sender.MakeGoodbye({}, 0);
    auto const goodbye = packet.substr(sender.MakeReport({}, 0).size());
    EXPECT_EQ(Read(goodbye, 0), 0x81CB0001U);
    EXPECT_EQ(Read(goodbye, 4), sender.GetSource());
}

TEST(RtpSender, KnowsRtcpByItsHeader) {
    EXPECT_TRUE(IsRtcp({"\x80\xC9\x00\x01\x00\x00\x00\x01", 8}));
    EXPECT_FALSE(IsRtcp({"\x80\xC9\x00\x01", 4}));
    EXPECT_FALSE(IsRtcp({"\x80\x60\x00\x01\x00\x00\x00\x01", 8}));
    EXPECT_FALSE(IsRtcp({"\x00\xC9\x00\x01\x00\x00\x00\x01", 8}));
    EXPECT_FALSE(IsRtcp(""));
}

} // namespace
} // namespace zarn::host::video::rtp
