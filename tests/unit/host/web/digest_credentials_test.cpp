#include "host/web/digest_credentials.h"

#include <zarn/authentication/digest.h>
#include <zarn/authentication/engine.h>

#include <gmock/gmock.h>

namespace zarn::host::web {
namespace {

TEST(BlanksBeforeSeparators, AreRemoved) {
    EXPECT_EQ(RemoveBlanksBeforeSeparators("Digest  a \t= 1 , b=2\t,\tc=\"3\" ,d=4 "),
              "Digest  a= 1, b=2,\tc=\"3\",d=4 ");
    EXPECT_EQ(RemoveBlanksBeforeSeparators(""), "");
    EXPECT_EQ(RemoveBlanksBeforeSeparators(" ,"), ",");
}

TEST(BlanksBeforeSeparators, StayInQuotedTexts) {
    for (auto const* text : {R"(Digest a="1 ,2 =3",b=4)", R"(Digest a="1\" ,2 =3",b=4)", R"(Digest a="1 ,2\)",
                             R"(Digest a="\\", b="3 ,4")"}) {
        EXPECT_EQ(RemoveBlanksBeforeSeparators(text), text);
    }
    EXPECT_EQ(RemoveBlanksBeforeSeparators(R"(Digest a="\\" ,b=3)"), R"(Digest a="\\",b=3)");
}

std::optional<DigestCredentials> Find(std::string const& authorization) {
    return DigestCredentials::Make(ParseDigestParameters(authorization));
}

/// The example of RFC 2617, 3.5.
constexpr char Example[] = R"(Digest username="Mufasa", realm="testrealm@host.com", )"
                           R"(nonce="dcd98b7102dd2f0e8b11d0f600bfb0c093", uri="/dir/index.html", qop=auth, )"
                           R"(nc=00000001, cnonce="0a4f113b", response="6629fae49393a05397450978507c4ef1")";

constexpr char Ha1[] = "939e7578ed9e3c518a452acee763bce9";

/// An engine whose account has the password from the example.
struct Engine : ZarnAuthenticationEngine {
    Engine() { SetHa1(Ha1); }
};

TEST(DigestCredentials, HasRightResponseForTheMethodAndTargetThatItWasMadeFor) {
    Engine const engine;
    auto const credentials = Find(Example);
    EXPECT_EQ(credentials->GetUri(), "/dir/index.html");
    EXPECT_TRUE(credentials->HasRightResponse(engine, "GET", "/dir/index.html"));
    EXPECT_TRUE(credentials->LogIn(engine, "GET", "/dir/index.html"));
    EXPECT_FALSE(credentials->HasRightResponse(engine, "POST", "/dir/index.html"));
    EXPECT_FALSE(credentials->LogIn(engine, "GET", "/dir/"));
}

TEST(DigestCredentials, MayHaveAResponseInUpperCase) {
    std::string text = Example;
    text.replace(text.find("6629fae4"), 32, "6629FAE49393A05397450978507C4EF1");
    EXPECT_TRUE(Find(text)->HasRightResponse(Engine(), "GET", "/dir/index.html"));
}

TEST(DigestCredentials, AreNeverRightWithoutAPassword) {
    std::string text = Example;
    auto const credentials = authentication::MakeDigestResponse({.ha1 = "",
                                                                 .method = "GET",
                                                                 .uri = "/dir/index.html",
                                                                 .nonce = "dcd98b7102dd2f0e8b11d0f600bfb0c093",
                                                                 .nc = "00000001",
                                                                 .cnonce = "0a4f113b",
                                                                 .qop = "auth"});
    text.replace(text.find("6629fae4"), 32, credentials);
    EXPECT_FALSE(Find(text)->HasRightResponse(ZarnAuthenticationEngine(), "GET", "/dir/index.html"));
}

TEST(DigestCredentials, AreNotRightWithAnotherQualityOfProtection) {
    std::string text = Example;
    auto const credentials = authentication::MakeDigestResponse({.ha1 = Ha1,
                                                                 .method = "GET",
                                                                 .uri = "/dir/index.html",
                                                                 .nonce = "dcd98b7102dd2f0e8b11d0f600bfb0c093",
                                                                 .nc = "00000001",
                                                                 .cnonce = "0a4f113b",
                                                                 .qop = "auth-int"});
    text.replace(text.find("qop=auth"), 8, "qop=auth-int").replace(text.find("6629fae4"), 32, credentials);
    EXPECT_FALSE(Find(text)->HasRightResponse(Engine(), "GET", "/dir/index.html"));
}

TEST(DigestCredentials, AreNotFoundInAFieldThatIsNotChecked) {
    for (auto const* text :
         {"", "Basic YTpi", "Digest", R"(Digest username="a", response="")", R"(Digest realm="r", response="")",
          R"(Digest username="", realm="r")", R"(Digest username="a", realm="r", algorithm=SHA-256)"}) {
        EXPECT_FALSE(Find(text)) << text;
    }
    EXPECT_TRUE(Find(R"(Digest username="a", realm="r", algorithm="md5")"));
}

bool IsUnoffered(std::string const& authorization) {
    return IsOfUnofferedForm(authorization, ParseDigestParameters(authorization));
}

TEST(UnofferedForm, MeansAnotherAlgorithmOrAuthInt) {
    for (auto const* parameter :
         {"algorithm=SHA-256", "algorithm=\"sha-256-sess\"", "algorithm=MD5-sess", "algorithm=SHA-512-256",
          "algorithm=SHA-512-256-sess", "qop=auth-int", "qop=\"auth-int\""}) {
        EXPECT_TRUE(IsUnoffered("Digest username=\"a\", " + std::string(parameter))) << parameter;
    }
}

TEST(UnofferedForm, IsNotThatOfCredentialsThatTheModuleMayCheck) {
    for (auto const& parameters :
         {std::string("nc=1"), std::string("algorithm=MD5"), std::string("algorithm=MD5 -sess"),
          std::string("algorithm=MD5; -sess"), std::string(R"(a="\", b="algorithm=SHA-256)"),
          std::string("%61lgorithm=MD5, algorithm=SHA-256"), std::string("algorithm=MD5, algorithm=SHA-256"),
          std::string("qop=auth"), "a=" + std::string(2000, 'a') + ", algorithm=SHA-256"}) {
        EXPECT_FALSE(IsUnoffered("Digest " + parameters)) << parameters;
    }
}

} // namespace
} // namespace zarn::host::web
