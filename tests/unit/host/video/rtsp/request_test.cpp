#include "host/video/rtsp/request.h"

#include <gtest/gtest.h>

#include <string>
#include <variant>

namespace zarn::host::video::rtsp {
namespace {

constexpr char Options[] = "OPTIONS * RTSP/1.0\r\nCSeq: 1\r\n\r\n";

/// Why a text is refused; fails when it is not.
Input::Refused ParseRefused(std::string const& text) {
    auto const input = ParseInput(text);
    EXPECT_TRUE(std::holds_alternative<Input::Refused>(input.what)) << text.substr(0, 80);
    return std::holds_alternative<Input::Refused>(input.what) ? std::get<Input::Refused>(input.what) : Input::Refused();
}

bool IsIncomplete(std::string_view text) { return std::holds_alternative<Input::Incomplete>(ParseInput(text).what); }

TEST(RtspRequest, IsReadWithItsFieldsAndBody) {
    std::string const text =
        "SET_PARAMETER rtsp://h/channels/1 RTSP/1.0\r\nCSeq:  7 \r\nContent-Length: 3\r\n\r\nabcOPTIONS";
    auto const input = ParseInput(text);
    auto const& request = std::get<Request>(input.what);
    EXPECT_EQ(request.method, "SET_PARAMETER");
    EXPECT_EQ(request.uri, "rtsp://h/channels/1");
    EXPECT_EQ(request.version, "RTSP/1.0");
    EXPECT_EQ(request.Find("cseq"), "7");
    EXPECT_EQ(request.Find("Session"), "");
    EXPECT_EQ(request.body, "abc");
    EXPECT_EQ(input.size, text.size() - std::string_view("OPTIONS").size());
}

TEST(RtspRequest, IsIncompleteWithoutAnyOfItsBytes) {
    std::string const text = "PLAY rtsp://h/a RTSP/1.0\r\nCSeq: 1\r\nContent-Length: 2\r\n\r\nab";
    for (std::size_t size = 0; size < text.size(); ++size) EXPECT_TRUE(IsIncomplete(text.substr(0, size))) << size;
    EXPECT_TRUE(std::holds_alternative<Request>(ParseInput(text).what));
}

TEST(RtspRequest, IsReadFromWhereTheSearchForItsEndStopped) {
    for (std::string const text : {"PLAY rtsp://h/a RTSP/1.0\r\nCSeq: 1\r\n\r\n", "PLAY a RTSP/1.0\nCSeq: 1\n\n"}) {
        for (std::size_t size = 1; size < text.size(); ++size) {
            auto const incomplete = std::get<Input::Incomplete>(ParseInput(text.substr(0, size)).what);
            EXPECT_EQ(incomplete.searched, size);
            EXPECT_EQ(incomplete.needed, size + 1);
            auto const input = ParseInput(text, incomplete.searched);
            ASSERT_TRUE(std::holds_alternative<Request>(input.what)) << size;
            EXPECT_EQ(std::get<Request>(input.what).Find("CSeq"), "1");
        }
    }
}

TEST(RtspRequest, IsNotSearchedAgainForTheEndOfItsHeader) {
    std::string const text = Options;
    EXPECT_TRUE(std::holds_alternative<Input::Incomplete>(ParseInput(text + "X", text.size() + 1).what));
}

TEST(RtspRequest, SaysHowMuchOfItsBodyIsNeeded) {
    std::string const head = "\r\nPLAY rtsp://h/a RTSP/1.0\r\nContent-Length: 70\r\n\r\n";
    auto const input = ParseInput(head + "a");
    EXPECT_EQ(input.size, 2U) << "the empty line";
    EXPECT_EQ(std::get<Input::Incomplete>(input.what).needed, head.size() - 2 + 70);
}

TEST(RtspRequest, MayFollowEmptyLinesAndEndItsLinesWithLineFeedsAlone) {
    auto const input = ParseInput("\r\n\nOPTIONS * RTSP/1.0\nCSeq: 3\n\n");
    EXPECT_EQ(std::get<Request>(input.what).Find("CSeq"), "3");
    EXPECT_EQ(input.size, 31U);
}

TEST(RtspRequest, TakesTheFirstOfRepeatedFields) {
    EXPECT_EQ(std::get<Request>(ParseInput("OPTIONS * RTSP/1.0\r\nCSeq: 1\r\nCSeq: 2\r\n\r\n").what).Find("CSeq"), "1");
}

TEST(RtspRequest, IsRefusedWhenItIsNotWellFormed) {
    for (std::string const text :
         {"FOO\r\n\r\n", "FOO * SIP/2.0\r\n\r\n", "A  RTSP/1.0\r\n\r\n", "A B RTSP/1.0 C\r\n\r\n",
          "A * RTSP/1.0\r\nField\r\n\r\n", "A * RTSP/1.0\r\n: b\r\n\r\n", "A * RTSP/1.0\r\n B: c\r\n\r\n",
          "A * RTSP/1.0\r\nContent-Length: x\r\n\r\n", "A * RTSP/1.0\r\nContent-Length: -1\r\n\r\n"}) {
        EXPECT_EQ(ParseRefused(text).status, Status::BadRequest) << text;
    }
}

TEST(RtspRequest, IsRefusedWithControlCharactersInAField) {
    for (auto const* value : {"a\rb", "a\x1b[2J", "a\x7f", "\x01"})
        EXPECT_EQ(ParseRefused(std::string("A * RTSP/1.0\r\nCSeq: ") + value + "\r\n\r\n").status, Status::BadRequest);
    EXPECT_EQ(ParseRefused(std::string("A * RTSP/1.0\r\nX: a\0b\r\n\r\n", 24)).status, Status::BadRequest);
    EXPECT_EQ(std::get<Request>(ParseInput("A * RTSP/1.0\r\nX: a\tb\xc3\xa4\r\n\r\n").what).Find("X"), "a\tb\xc3\xa4");
}

TEST(RtspRequest, IsRefusedWithControlCharactersInItsRequestLine) {
    for (auto const* line : {"A rtsp://a\rb/ RTSP/1.0", "A\x1b[2J * RTSP/1.0", "A * RTSP/1.0\x7f", "A a\tb RTSP/1.0"})
        EXPECT_EQ(ParseRefused(line + std::string("\r\n\r\n")).status, Status::BadRequest) << line;
}

TEST(RtspRequest, IsRefusedWithItsNumberWhenItsBodyIsTooLong) {
    for (auto const* length : {"65537", "4294967295", "99999999999999999999999"}) {
        auto const refused =
            ParseRefused("A * RTSP/1.0\r\nCSeq: 4\r\nContent-Length: " + std::string(length) + "\r\n\r\n");
        EXPECT_EQ(refused.status, Status::EntityTooLarge) << length;
        EXPECT_EQ(refused.sequence, "4") << length;
    }
    EXPECT_TRUE(IsIncomplete("A * RTSP/1.0\r\nCSeq: 4\r\nContent-Length: 65536\r\n\r\n"));
}

TEST(RtspRequest, GetsNoAnswerWhenItsHeaderHasNoEnd) {
    std::string const line = "A * RTSP/1.0\r\nX: ";
    EXPECT_TRUE(IsIncomplete(line + std::string(MaximumHeader - line.size() - 1, 'a')));
    EXPECT_EQ(ParseRefused(line + std::string(MaximumHeader - line.size(), 'a')).status, std::nullopt);
}

TEST(RtspRequest, GetsNoAnswerWhenItHasTooManyFields) {
    std::string text = "A * RTSP/1.0\r\n";
    for (std::size_t count = 0; count < MaximumFields; ++count) text += "X: a\r\n";
    EXPECT_TRUE(std::holds_alternative<Request>(ParseInput(text + "\r\n").what));
    EXPECT_EQ(ParseRefused(text + "X: a\r\n\r\n").status, std::nullopt);
}

TEST(RtspRequest, OfATunnelHasNoBody) {
    std::string const head = "POST /channels/1 HTTP/1.0\r\nx-sessioncookie: a\r\nContent-Length: 32767\r\n\r\n";
    auto const input = ParseInput(head + "T1BU");
    EXPECT_EQ(std::get<Request>(input.what).body, "");
    EXPECT_EQ(input.size, head.size());
}

TEST(RtspInterleaved, IsReadWithItsChannel) {
    std::string const packet("$\x03\x00\x02OK", 6);
    auto const text = packet + Options;
    auto const input = ParseInput(text);
    auto const& interleaved = std::get<Input::Interleaved>(input.what);
    EXPECT_EQ(interleaved.channel, 3);
    EXPECT_EQ(interleaved.data, "OK");
    EXPECT_EQ(input.size, packet.size());
}

TEST(RtspInterleaved, IsIncompleteWithoutAnyOfItsBytes) {
    std::string const packet("$\x03\x00\x02OK", 6);
    for (std::size_t size = 0; size < packet.size(); ++size) EXPECT_TRUE(IsIncomplete(packet.substr(0, size))) << size;
    EXPECT_EQ(std::get<Input::Incomplete>(ParseInput("$\x03").what).needed, 4U);
    EXPECT_EQ(std::get<Input::Incomplete>(ParseInput(packet.substr(0, 5)).what).needed, packet.size());
}

} // namespace
} // namespace zarn::host::video::rtsp
