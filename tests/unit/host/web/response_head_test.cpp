#include "host/web/response_head.h"

#include <gmock/gmock.h>

namespace zarn::host::web {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

Reply const Empty{Status::Ok, {}, {}};

TEST(ResponseHead, BeginsWithTheStatusAndEndsWithABlankLine) {
    EXPECT_THAT(MakeResponseHead(Empty, {}), AllOf(StartsWith("HTTP/1.1 200 OK\r\n"), EndsWith("\r\n\r\n")));
    EXPECT_THAT(MakeResponseHead({static_cast<Status>(299), {}, {}}, {}), StartsWith("HTTP/1.1 299 \r\n"));
}

TEST(ResponseHead, ContainsTheDateInHttpFormat) {
    EXPECT_THAT(
        MakeResponseHead(Empty, {}),
        ContainsRegex("Date: (Mon|Tue|Wed|Thu|Fri|Sat|Sun), [0-9]{2} [A-Z][a-z]{2} [0-9]{4} [0-9:]{8} GMT\r\n"));
}

TEST(ResponseHead, CountsTheBodyOverAllChunks) {
    Reply const reply{Status::Ok,
                      {},
                      {zarn::web::response::State::Complete,
                       {std::make_shared<container::Buffer>("1234\n"), std::make_shared<container::Buffer>("56789")}}};
    EXPECT_THAT(MakeResponseHead(reply, {}), HasSubstr("Content-Length: 10\r\n"));
    EXPECT_THAT(MakeResponseHead(Empty, {}), HasSubstr("Content-Length: 0\r\n"));
}

TEST(ResponseHead, SetsConnectionAccordingToTheHttpVersion) {
    EXPECT_THAT(MakeResponseHead(Empty, {1, true}), Not(HasSubstr("Connection:")));
    EXPECT_THAT(MakeResponseHead(Empty, {1, false}), HasSubstr("Connection: close\r\n"));
    EXPECT_THAT(MakeResponseHead(Empty, {0, true}), HasSubstr("Connection: keep-alive\r\n"));
    EXPECT_THAT(MakeResponseHead(Empty, {0, false}), HasSubstr("Connection: close\r\n"));
}

TEST(ResponseHead, KeepsTheFieldsOfTheReply) {
    Reply const reply{Status::Unauthorized, {{"Content-Type", "text/xml"}, {"WWW-Authenticate", "Digest"}}, {}};
    EXPECT_THAT(MakeResponseHead(reply, {}),
                AllOf(HasSubstr("\r\nContent-Type: text/xml\r\n"), HasSubstr("\r\nWWW-Authenticate: Digest\r\n")));
}

TEST(ResponseHead, ReplacesFieldsOwnedByTheServer) {
    Reply const reply{Status::Ok,
                      {{"connection", "close"},
                       {"CONTENT-LENGTH", "77"},
                       {"Transfer-Encoding", "chunked"},
                       {"Server", "other"},
                       {"Keep-Alive", "1"},
                       {"date", "today"}},
                      {}};
    EXPECT_EQ(MakeResponseHead(reply, {}), MakeResponseHead(Empty, {}));
}

TEST(ResponseHead, OmitsFieldsThatWouldSplitTheMessage) {
    Reply const reply{
        Status::Ok,
        {{"A", "1\r\nB: 2"}, {"C", "1\n"}, {"D", std::string("1\0", 2)}, {"E F", "1"}, {"", "1"}, {"G:", "1"}},
        {}};
    EXPECT_EQ(MakeResponseHead(reply, {}), MakeResponseHead(Empty, {}));
}

TEST(ResponseHead, HasNoContentLengthWithoutABody) {
    for (auto const status : {Status::NoContent, Status::NotModified}) {
        EXPECT_FALSE(HasBody(status));
        EXPECT_THAT(MakeResponseHead({status, {}, {}}, {}), Not(HasSubstr("Content-Length")));
    }
    EXPECT_TRUE(HasBody(Status::Ok));
}

TEST(ResponseHead, ReplacesANonFinalStatusWith500) {
    for (unsigned const code : {0U, 2U, 100U, 199U, 600U, 65535U}) {
        EXPECT_THAT(MakeResponseHead({static_cast<Status>(code), {}, {}}, {}),
                    StartsWith("HTTP/1.1 500 Internal Server Error\r\n"));
    }
}

} // namespace
} // namespace zarn::host::web
