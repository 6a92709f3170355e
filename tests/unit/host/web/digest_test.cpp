#include "host/web/digest.h"
#include "host/web/digest_credentials.h"
#include "host/web/reply.h"
#include "support/test_request.h"

#include <zarn/authentication/digest.h>
#include <zarn/authentication/engine.h>
#include <zarn/authentication/ha1.h>
#include <zarn/authentication/realm.h>

#include <gmock/gmock.h>

namespace zarn::host::web {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using Method = test::TestRequest::Method;

/// The client's digest parameters, from which its response is computed.
struct ClientAnswer {
    std::string user = "admin";
    std::string password = "secret";
    std::string method = "GET";
    std::string uri = "/snapshot/1/latest.jpeg";
    std::string qop = "auth";
    std::string further = {};
    std::string count = "00000001";
    std::string cnonce = "c";
};

class DigestTest : public testing::Test {
protected:
    DigestTest() { engine.SetHa1(authentication::MakeHa1("admin", authentication::Realm, "secret")); }

    /// The challenge for a request; empty when the request is accepted.
    std::string Ask(std::string const& authorization, std::string const& target = "/snapshot/1/latest.jpeg",
                    Method method = Method::Get) const {
        test::TestRequest const request(method, target, {{"authorization", authorization}});
        auto const refusal = digest.Refuse(request);
        if (!refusal) return "";
        EXPECT_EQ(refusal->reply.GetStatus(), Status::Unauthorized);
        return refusal->reply.GetFields().at("WWW-Authenticate");
    }

    /// Whether a refused request counts as an attempt to guess the password: refused by the host itself, by the module.
    std::pair<bool, bool> IsGuess(std::string const& authorization) const {
        test::TestRequest const request(Method::Get, "/snapshot/1/latest.jpeg", {{"authorization", authorization}});
        auto const own = digest.Refuse(request);
        auto const replaced = digest.ReplaceChallenge(MakeTextReply(Status::Unauthorized, "no"), request);
        return {own && own->login == Login::Wrong, replaced.login == Login::Wrong};
    }

    std::string GetNonce() const { return ParseDigestParameters(Ask(""))->at("nonce"); }

    static std::string Say(std::string const& nonce, ClientAnswer const& answer) {
        auto const ha1 = authentication::MakeHa1(answer.user, authentication::Realm, answer.password);
        auto const response = authentication::MakeDigestResponse({.ha1 = ha1,
                                                                  .method = answer.method,
                                                                  .uri = answer.uri,
                                                                  .nonce = nonce,
                                                                  .nc = answer.count,
                                                                  .cnonce = answer.cnonce,
                                                                  .qop = answer.qop});
        std::string text = "Digest username=\"" + answer.user + "\", realm=\"" + authentication::Realm +
                           "\", nonce=\"" + nonce + "\", uri=\"" + answer.uri + "\", response=\"" + response + "\"";
        if (!answer.qop.empty())
            text += ", qop=" + answer.qop + ", nc=" + answer.count + ", cnonce=\"" + answer.cnonce + "\"";
        return text + answer.further;
    }

    /// The challenge that replaces the module's own in its refusal of a request.
    std::string Challenge(std::string const& authorization, std::string const& target = "/onvif/a") const {
        test::TestRequest const request(Method::Post, target, {{"authorization", authorization}});
        auto const data = digest
                              .ReplaceChallenge({Status::Unauthorized,
                                                 {{"www-authenticate", ModulesChallenge}, {"Content-Type", "text/xml"}},
                                                 {zarn::web::response::State::Complete, {}}},
                                                request)
                              .reply;
        EXPECT_EQ(data.GetStatus(), Status::Unauthorized);
        EXPECT_EQ(data.GetFields().size(), 2U);
        EXPECT_EQ(data.GetFields().at("Content-Type"), "text/xml");
        return data.GetFields().at("WWW-Authenticate");
    }

    static constexpr char ModulesChallenge[] =
        R"(Digest algorithm=MD5, realm="the client's", qop="auth", nonce="1f", opaque="2e")";

    Challenges challenges;
    ZarnAuthenticationEngine engine{&challenges};
    Digest digest{engine, challenges};
};

TEST_F(DigestTest, ChallengesARequestWithoutCredentials) {
    EXPECT_THAT(Ask(""),
                MatchesRegex("Digest realm=\"zarnsuite.example\", qop=\"auth\", nonce=\"[0-9a-f]+\", algorithm=MD5"));
}

TEST_F(DigestTest, AcceptsARightAnswer) {
    EXPECT_EQ(Ask(Say(GetNonce(), {})), "");
    EXPECT_EQ(Ask(Say(GetNonce(), {.qop = ""})), "");
    EXPECT_EQ(Ask(Say(GetNonce(), {.further = ", algorithm=md5"})), "");
}

TEST_F(DigestTest, AcceptsEverythingWhenAuthenticationIsOff) {
    engine.SetEnabled(false);
    EXPECT_EQ(Ask(""), "");
}

TEST_F(DigestTest, RefusesAWrongAnswer) {
    for (auto const& answer :
         {ClientAnswer{.password = "guess"}, ClientAnswer{.user = "root"}, ClientAnswer{.user = ""},
          ClientAnswer{.method = "POST"}, ClientAnswer{.uri = "/snapshot/2/latest.jpeg"}, ClientAnswer{.uri = ""},
          ClientAnswer{.qop = "auth-int"}, ClientAnswer{.further = ", algorithm=SHA-256"},
          ClientAnswer{.further = ", nc=00000002"}}) {
        EXPECT_THAT(Ask(Say(GetNonce(), answer)), HasSubstr("nonce="));
        EXPECT_THAT(Ask(Say(GetNonce(), answer)), Not(HasSubstr("stale")));
    }
}

TEST_F(DigestTest, RefusesAnotherScheme) { EXPECT_THAT(Ask("Basic YWRtaW46c2VjcmV0"), HasSubstr("nonce=")); }

TEST_F(DigestTest, ReportsAnUnknownNonceAsStale) {
    EXPECT_THAT(Ask(Say("dcd98b7102dd2f0e8b11d0f600bfb0c0", {})), HasSubstr("stale=true"));
}

TEST_F(DigestTest, ReportsAReplayedAnswerAsStale) {
    auto const answer = Say(GetNonce(), {});
    EXPECT_EQ(Ask(answer), "");
    EXPECT_THAT(Ask(answer), HasSubstr("stale=true"));
    EXPECT_THAT(Ask(answer), HasSubstr("stale=true"));
}

TEST_F(DigestTest, AcceptsSeveralAnswersToOneChallenge) {
    auto const nonce = GetNonce();
    for (auto const* count : {"00000001", "00000003", "00000002"}) EXPECT_EQ(Ask(Say(nonce, {.count = count})), "");
    EXPECT_EQ(Ask(Say(nonce, {.cnonce = "d"})), "");
    for (int request = 0; request < 3; ++request) EXPECT_EQ(Ask(Say(nonce, {.qop = ""})), "");
}

TEST_F(DigestTest, DoesNotConsumeTheNonceCountOfAWrongAnswer) {
    auto const nonce = GetNonce();
    EXPECT_NE(Ask(Say(nonce, {.password = "guess"})), "");
    EXPECT_EQ(Ask(Say(nonce, {})), "");
}

TEST_F(DigestTest, VerifiesTheOneAccountForAnyUserName) {
    auto answer = Say(GetNonce(), {});
    answer.replace(answer.find("\"admin\""), 7, "\"root\"");
    EXPECT_EQ(Ask(answer), "");
}

TEST_F(DigestTest, ReplacesTheModulesChallengeWithItsOwn) {
    EXPECT_THAT(Challenge(""), MatchesRegex("Digest realm=\"the client's\", qop=\"auth\", nonce=\"[0-9a-f]{64}\", "
                                            "algorithm=MD5"));
    auto const nonce = ParseDigestParameters(Challenge(""))->at("nonce");
    EXPECT_EQ(Ask(Say(nonce, {})), "");
}

TEST_F(DigestTest, MarksTheModulesChallengeStaleForARightAnswer) {
    auto const answer = Say("1f", {.method = "POST", .uri = "/onvif/a"});
    EXPECT_THAT(Challenge(answer), HasSubstr("stale=true"));
    EXPECT_THAT(Challenge(answer, "/onvif/a?b=1"), HasSubstr("stale=true"));
    EXPECT_THAT(Challenge(Say("1f", {.method = "POST", .uri = "/onvif/a?b=1"}), "/onvif/a?b=1"),
                HasSubstr("stale=true"));
    EXPECT_THAT(Challenge(answer, "/onvif/b"), Not(HasSubstr("stale")));
    EXPECT_THAT(Challenge(Say("1f", {.password = "guess", .method = "POST", .uri = "/onvif/a"})),
                Not(HasSubstr("stale")));
}

TEST_F(DigestTest, AcceptsAnAnswerForTheTargetWithOrWithoutItsQuery) {
    auto const target = "/snapshot/1/latest.jpeg?time=1";
    EXPECT_EQ(Ask(Say(GetNonce(), {.uri = target}), target), "");
    EXPECT_EQ(Ask(Say(GetNonce(), {}), target), "");
    EXPECT_EQ(Ask(Say(GetNonce(), {.uri = "http://host/snapshot/1/latest.jpeg"}), target), "");
}

TEST_F(DigestTest, CountsAWrongAnswerAsAGuess) {
    std::pair const guess(true, true);
    EXPECT_EQ(IsGuess(Say(GetNonce(), {.password = "guess"})), guess);
    EXPECT_EQ(IsGuess("digest username=\"admin\""), guess);
    EXPECT_EQ(IsGuess("Digest username=\"admin\", realm=\"stale=true\""), guess);
}

TEST_F(DigestTest, IgnoresRefusalsThatAreNotGuesses) {
    std::pair const harmless(false, false);
    EXPECT_EQ(IsGuess(""), harmless);
    EXPECT_EQ(IsGuess("Basic YTpi"), harmless);
    EXPECT_EQ(IsGuess(Say(GetNonce(), {.password = "guess", .further = ", algorithm=SHA-256"})), harmless);
    EXPECT_FALSE(IsGuess(Say("dcd98b7102dd2f0e8b11d0f600bfb0c0", {})).first) << "only the nonce is stale";
    EXPECT_FALSE(IsGuess(Say("1f", {.method = "POST"})).second) << "only the nonce is stale";
}

TEST_F(DigestTest, VerifiesTheMethodOfTheRequest) {
    EXPECT_EQ(Ask(Say(GetNonce(), {.method = "HEAD"}), "/snapshot/1/latest.jpeg", Method::Head), "");
    EXPECT_NE(Ask(Say(GetNonce(), {}), "/snapshot/1/latest.jpeg", Method::Head), "");
}

} // namespace
} // namespace zarn::host::web
