#include "device_fixture.h"

#include <gmock/gmock.h>
#include <zlib.h>

#include <stdexcept>
#include <string>

namespace zarn::test {
namespace {

using testing::StartsWith;

/// The text compressed with gzip (RFC 1952).
std::string Compress(std::string text) {
    constexpr int Gzip = 16; // zlib: added to the window size to select gzip
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, MAX_WBITS + Gzip, MAX_MEM_LEVEL, Z_DEFAULT_STRATEGY))
        throw std::runtime_error("zlib cannot compress");
    std::string compressed(deflateBound(&stream, text.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(text.data());
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(compressed.data());
    stream.avail_out = static_cast<uInt>(compressed.size());
    bool const whole = deflate(&stream, Z_FINISH) == Z_STREAM_END;
    compressed.resize(stream.total_out);
    deflateEnd(&stream);
    if (!whole) throw std::runtime_error("zlib has not compressed everything");
    return compressed;
}

/// Header fields that describe the request's body.
class Body : public DeviceFixture {};

TEST_F(Body, AnnouncedByExpectContinueGetsTheUsualResponse) {
    for (auto const* operation : {"<tds:GetHostname/>", "<tds:GetUsers/>", "<tds:GetDNS/>", "<tds:MakeCoffee/>"}) {
        auto const plain = Ask(operation);
        auto const reply = Ask(operation, {.fields = {{"Expect", "100-continue"}}});
        EXPECT_EQ(reply.status, plain.status) << operation;
        EXPECT_EQ(reply.fields, plain.fields) << operation;
        EXPECT_EQ(reply.text, plain.text) << "an interim response precedes the answer";
        EXPECT_THAT(reply.text, StartsWith("<?xml ")) << operation;
    }
}

TEST_F(Body, AnnouncedByExpectContinueIsRefusedWithTheFinalResponse) {
    auto const reply = Ask("<tds:GetUsers/>", {.fields = {{"expect", "100-Continue"}}, .authenticated = false});
    EXPECT_THAT(reply, IsChallenge("zarnsuite.example"));
    EXPECT_THAT(reply.text, StartsWith("<?xml "));
}

TEST_F(Body, ThatIsCutOffIsASyntaxError) {
    auto const body = Envelope("<tds:GetHostname/>");
    auto const reply = Post(body.substr(0, body.rfind("Envelope")));
    EXPECT_EQ(reply.status, 400);
    EXPECT_THAT(reply.text, testing::HasSubstr("syntax error"));
}

TEST_F(Body, WhenCompressedIsRefusedWithoutAffectingTheNext) {
    auto const body = Envelope("<tds:GetHostname/>");
    EXPECT_EQ(Post(Compress(body), {.fields = {{"Content-Encoding", "gzip"}}}).status, 415);
    EXPECT_EQ(Post(body).status, 200);
    EXPECT_EQ(Post(Compress(body)).status, 400) << "an undeclared gzip body must not be inflated";
    EXPECT_EQ(Post(body).status, 200);
}

} // namespace
} // namespace zarn::test
