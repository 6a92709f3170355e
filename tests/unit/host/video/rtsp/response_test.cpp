#include "host/video/rtsp/response.h"

#include <gmock/gmock.h>

#include <chrono>

namespace zarn::host::video::rtsp {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// Wednesday, 1 July 2026, 08:09:10.
constexpr std::chrono::system_clock::time_point Now{std::chrono::seconds(1782893350)};

TEST(RtspResponse, RepeatsTheNumberOfTheRequest) {
    EXPECT_EQ(WriteResponse({Status::Ok, {{"Session", "a"}}}, "7", Now),
              "RTSP/1.0 200 OK\r\nCSeq: 7\r\nSession: a\r\nServer: zarn-host\r\n"
              "Date: Wed, 01 Jul 2026 08:09:10 GMT\r\n\r\n");
}

TEST(RtspResponse, HasNoNumberWhenTheRequestHadNone) {
    EXPECT_THAT(WriteResponse({Status::BadRequest}, "", Now), StartsWith("RTSP/1.0 400 Bad Request\r\nServer: "));
}

TEST(RtspResponse, TellsTheLengthOfItsBody) {
    EXPECT_THAT(WriteResponse({Status::Ok, {}, "body"}, "1", Now), HasSubstr("Content-Length: 4\r\n\r\nbody"));
    EXPECT_THAT(WriteResponse({Status::Ok}, "1", Now), Not(HasSubstr("Content-Length")));
}

TEST(RtspResponse, NamesEveryStatus) {
    for (auto const status :
         {Status::Ok, Status::BadRequest, Status::Unauthorized, Status::NotFound, Status::EntityTooLarge,
          Status::ParameterNotUnderstood, Status::SessionNotFound, Status::MethodNotValidInThisState,
          Status::AggregateNotAllowed, Status::OnlyAggregateAllowed, Status::UnsupportedTransport,
          Status::InternalError, Status::NotImplemented, Status::Unavailable, Status::VersionNotSupported,
          Status::OptionNotSupported}) {
        EXPECT_NE(GetReason(status), "Error") << static_cast<int>(status);
    }
}

TEST(RtspResponse, OpensATunnelInHttp) {
    EXPECT_THAT(WriteTunnelResponse(Now), StartsWith("HTTP/1.0 200 OK\r\n"));
    EXPECT_THAT(WriteTunnelResponse(Now), HasSubstr("\r\nContent-Type: application/x-rtsp-tunnelled\r\n"));
    EXPECT_THAT(WriteHttpRefusal(Now), StartsWith("HTTP/1.0 400 "));
}

} // namespace
} // namespace zarn::host::video::rtsp
