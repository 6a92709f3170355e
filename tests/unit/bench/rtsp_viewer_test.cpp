#include "support/digest_client.h"
#include "unit/bench/scripted_server.h"

#include <bench/rtsp_viewer.h>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/use_future.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace zarn::bench {
namespace {

using test::ScriptedServer;
using testing::AllOf;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

std::string MakeRtspResponse(std::string const& fields = {}, std::string const& body = {}) {
    return "RTSP/1.0 200 OK\r\nCSeq: 1\r\n" + fields + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" +
           body;
}

enum class Packet { InsidePicture, EndOfPicture };

/// An interleaved RTP packet.
std::string MakePacket(std::uint16_t sequence, Packet packet, std::size_t payload = 100, char channel = 0) {
    auto const size = payload + 12;
    std::string text{'$', channel, static_cast<char>(size >> 8), static_cast<char>(size)};
    text += {'\x80', static_cast<char>(packet == Packet::EndOfPicture ? 0xe0 : 0x60), static_cast<char>(sequence >> 8),
             static_cast<char>(sequence)};
    return text + std::string(payload + 8, 'x');
}

std::string const Description = MakeRtspResponse(
    "Content-Base: rtsp://127.0.0.1/live/\r\n",
    "v=0\r\na=control:*\r\nm=audio 0 RTP/AVP 0\r\na=control:sound\r\nm=video 0 RTP/AVP 96\r\na=control:stream=0\r\n");
std::string const SetupResponse = MakeRtspResponse("Session: abc;timeout=60\r\n");
std::string const NotFound = "RTSP/1.0 404 Not Found\r\nCSeq: 1\r\n\r\n";

/// The responses up to PLAY, with which packets come.
std::vector<std::string> MakeStream(std::string const& packets) {
    return {MakeRtspResponse(), Description, SetupResponse, packets};
}

class RtspViewerTest : public testing::Test {
protected:
    /// Plays from a server until it ends the stream.
    void Play(std::vector<std::string> const& responses, std::string const& password = {}) {
        ScriptedServer server(responses);
        port = server.GetPort();
        viewer.emplace(io, port, "/live", password);
        auto played = boost::asio::co_spawn(io, viewer->Play(), boost::asio::use_future);
        io.run();
        try {
            played.get();
        } catch (std::exception const& error) {
            failure = error.what();
        }
        viewer->Close();
        requests = server.GetRequests();
    }

    boost::asio::io_context io;
    std::optional<RtspViewer> viewer;
    unsigned short port = 0;
    std::string failure;
    std::vector<std::string> requests;
};

TEST_F(RtspViewerTest, CountsThePacketsThatEndAPicture) {
    Play(MakeStream(MakeRtspResponse() + MakePacket(7, Packet::InsidePicture) + MakePacket(8, Packet::EndOfPicture) +
                    MakePacket(9, Packet::EndOfPicture)));
    EXPECT_EQ(viewer->GetArrivals().GetCount(), 2U);
    EXPECT_EQ(viewer->GetBytes(), 3 * 112U);
    EXPECT_EQ(viewer->GetLost(), 0U);
    EXPECT_THAT(failure, HasSubstr("End of file"));
}

TEST_F(RtspViewerTest, CountsPacketsBeforeTheResponseToPlay) {
    Play(MakeStream(MakePacket(7, Packet::EndOfPicture) + MakeRtspResponse() + MakePacket(8, Packet::EndOfPicture)));
    EXPECT_EQ(viewer->GetArrivals().GetCount(), 2U);
}

TEST_F(RtspViewerTest, CountsMissingPackets) {
    Play(
        MakeStream(MakeRtspResponse() + MakePacket(65534, Packet::EndOfPicture) + MakePacket(1, Packet::EndOfPicture)));
    EXPECT_EQ(viewer->GetLost(), 2U);
}

TEST_F(RtspViewerTest, IgnoresControlPackets) {
    Play(MakeStream(MakeRtspResponse() + MakePacket(7, Packet::EndOfPicture, 100, 1)));
    EXPECT_EQ(viewer->GetArrivals().GetCount(), 0U);
    EXPECT_EQ(viewer->GetBytes(), 0U);
}

TEST_F(RtspViewerTest, ReadsTheLargestPackets) {
    std::string packets = MakeRtspResponse();
    for (std::uint16_t i = 0; i < 20; ++i) packets += MakePacket(i, Packet::EndOfPicture, 65'535 - 12);
    Play(MakeStream(packets));
    EXPECT_EQ(viewer->GetArrivals().GetCount(), 20U);
}

TEST_F(RtspViewerTest, SetsUpTheVideoTrackInItsSession) {
    Play(MakeStream(MakeRtspResponse()));
    ASSERT_THAT(requests, SizeIs(4));
    EXPECT_THAT(requests[2], StartsWith("SETUP rtsp://127.0.0.1/live/stream=0 RTSP/1.0\r\n"));
    EXPECT_THAT(requests[3], AllOf(StartsWith("PLAY "), HasSubstr("\r\nSession: abc\r\n")));
}

TEST_F(RtspViewerTest, LogsInWhenItIsAsked) {
    Play({MakeRtspResponse(),
          "RTSP/1.0 401 Unauthorized\r\nCSeq: 2\r\nWWW-Authenticate: Digest realm=\"r\", nonce=\"n\"\r\n\r\n",
          Description, SetupResponse, MakeRtspResponse()},
         "secret");
    ASSERT_THAT(requests, SizeIs(5));
    auto const url = "rtsp://127.0.0.1:" + std::to_string(port) + "/live";
    auto const response =
        test::Hash("MD5", test::Hash("MD5", "admin:r:secret") + ":n:" + test::Hash("MD5", "DESCRIBE:" + url));
    EXPECT_THAT(requests[2],
                HasSubstr("\r\nAuthorization: Digest username=\"admin\", realm=\"r\", nonce=\"n\", uri=\"" + url +
                          "\", response=\"" + response + "\"\r\n"));
    EXPECT_THAT(requests[4], HasSubstr("\r\nAuthorization: Digest "));
}

TEST_F(RtspViewerTest, FailsWithoutALoginWhenItIsAsked) {
    Play({MakeRtspResponse(), "RTSP/1.0 401 Unauthorized\r\nCSeq: 2\r\nWWW-Authenticate: Digest nonce=\"n\"\r\n\r\n"});
    EXPECT_EQ(failure, "DESCRIBE: RTSP/1.0 401 Unauthorized");
}

TEST_F(RtspViewerTest, FailsWhenTheStreamDoesNotExist) {
    Play({MakeRtspResponse(), NotFound});
    EXPECT_EQ(failure, "DESCRIBE: RTSP/1.0 404 Not Found");
}

TEST_F(RtspViewerTest, FailsWithoutVideo) {
    Play({MakeRtspResponse(), MakeRtspResponse({}, "v=0\r\nm=audio 0 RTP/AVP 0\r\na=control:sound\r\n")});
    EXPECT_THAT(failure, StartsWith("the description has no video"));
}

TEST_F(RtspViewerTest, FailsForAnEndlessResponse) {
    Play({"RTSP/1.0 200 OK\r\nA: " + std::string(300'000, 'x')});
    EXPECT_EQ(failure, "the server sends more than a packet may hold");
}

TEST_F(RtspViewerTest, FailsWhenTheServerEndsTheStream) {
    Play(MakeStream(MakeRtspResponse() + "TEARDOWN rtsp://127.0.0.1/live RTSP/1.0\r\nCSeq: 1\r\n\r\n"));
    EXPECT_EQ(failure, "the server ended the stream");
}

} // namespace
} // namespace zarn::bench
