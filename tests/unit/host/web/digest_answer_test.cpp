#include "host/web/digest_answer.h"
#include "support/test_request.h"

#include <zarn/authentication/digest.h>
#include <zarn/authentication/engine.h>

#include <gmock/gmock.h>

namespace zarn::host::web {
namespace {

std::optional<DigestAnswer> Read(std::string const& authorization) {
    return DigestAnswer::Read(
        test::TestRequest(test::TestRequest::Method::Get, "/", {{"authorization", authorization}}));
}

/// The example of RFC 2617, 3.5.
constexpr char Example[] = R"(Digest username="Mufasa", realm="testrealm@host.com", )"
                           R"(nonce="dcd98b7102dd2f0e8b11d0f600bfb0c093", uri="/dir/index.html", qop=auth, )"
                           R"(nc=00000001, cnonce="0a4f113b", response="6629fae49393a05397450978507c4ef1")";

constexpr char Ha1[] = "939e7578ed9e3c518a452acee763bce9";

/// An engine whose account has the password of the example.
struct Engine : ZarnAuthenticationEngine {
    Engine() { SetHa1(Ha1); }
};

TEST(DigestAnswer, IsRightForTheMethodAndTargetThatItWasMadeFor) {
    Engine const engine;
    auto const answer = Read(Example);
    EXPECT_EQ(answer->GetUri(), "/dir/index.html");
    EXPECT_TRUE(answer->IsRight(engine, "GET", "/dir/index.html"));
    EXPECT_TRUE(answer->LogsIn(engine, "GET", "/dir/index.html"));
    EXPECT_FALSE(answer->IsRight(engine, "POST", "/dir/index.html"));
    EXPECT_FALSE(answer->LogsIn(engine, "GET", "/dir/"));
}

TEST(DigestAnswer, MayBeWrittenInUpperCase) {
    std::string text = Example;
    text.replace(text.find("6629fae4"), 32, "6629FAE49393A05397450978507C4EF1");
    EXPECT_TRUE(Read(text)->IsRight(Engine(), "GET", "/dir/index.html"));
}

TEST(DigestAnswer, IsNeverRightWithoutAPassword) {
    std::string text = Example;
    auto const answer = authentication::MakeDigestResponse({.ha1 = "",
                                                            .method = "GET",
                                                            .uri = "/dir/index.html",
                                                            .nonce = "dcd98b7102dd2f0e8b11d0f600bfb0c093",
                                                            .nonceCount = "00000001",
                                                            .clientNonce = "0a4f113b",
                                                            .qop = "auth"});
    text.replace(text.find("6629fae4"), 32, answer);
    EXPECT_FALSE(Read(text)->IsRight(ZarnAuthenticationEngine(), "GET", "/dir/index.html"));
}

TEST(DigestAnswer, IsNotRightWithAnotherQualityOfProtection) {
    std::string text = Example;
    auto const answer = authentication::MakeDigestResponse({.ha1 = Ha1,
                                                            .method = "GET",
                                                            .uri = "/dir/index.html",
                                                            .nonce = "dcd98b7102dd2f0e8b11d0f600bfb0c093",
                                                            .nonceCount = "00000001",
                                                            .clientNonce = "0a4f113b",
                                                            .qop = "auth-int"});
    text.replace(text.find("qop=auth"), 8, "qop=auth-int").replace(text.find("6629fae4"), 32, answer);
    EXPECT_FALSE(Read(text)->IsRight(Engine(), "GET", "/dir/index.html"));
}

TEST(DigestAnswer, IsNoneInAFieldThatNobodyChecks) {
    for (auto const* text :
         {"", "Basic YTpi", "Digest", R"(Digest username="a", response="")", R"(Digest realm="r", response="")",
          R"(Digest username="", realm="r")", R"(Digest username="a", realm="r", algorithm=SHA-256)"}) {
        EXPECT_FALSE(Read(text)) << text;
    }
    EXPECT_TRUE(Read(R"(Digest username="a", realm="r", algorithm="md5")"));
}

TEST(OtherForm, IsThatOfAnotherAlgorithmOrOverTheBody) {
    for (auto const* parameter :
         {"algorithm=SHA-256", "algorithm=\"sha-256-sess\"", "algorithm=MD5-sess", "algorithm=SHA-512-256",
          "algorithm=SHA-512-256-sess", "qop=auth-int", "qop=\"auth-int\""}) {
        EXPECT_TRUE(IsOfOtherForm("Digest username=\"a\", " + std::string(parameter))) << parameter;
    }
}

TEST(OtherForm, IsNotThatOfAnAnswerThatSomebodyMightCheck) {
    for (auto const& parameters :
         {std::string("nc=1"), std::string("algorithm=MD5"), std::string("algorithm=MD5 -sess"),
          std::string("algorithm=MD5; -sess"), std::string(R"(a="\", b="algorithm=SHA-256)"),
          std::string("%61lgorithm=MD5, algorithm=SHA-256"), std::string("algorithm=MD5, algorithm=SHA-256"),
          std::string("qop=auth"), "a=" + std::string(2000, 'a') + ", algorithm=SHA-256"}) {
        EXPECT_FALSE(IsOfOtherForm("Digest " + parameters)) << parameters;
    }
}

} // namespace
} // namespace zarn::host::web
