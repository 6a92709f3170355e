#include "host/video/rtsp/authentication.h"
#include "support/digest_client.h"

#include <zarn/authentication/ha1.h>
#include <zarn/authentication/realm.h>

#include <gmock/gmock.h>

#include <chrono>

namespace zarn::host::video::rtsp {
namespace {

using enum Authentication::Verdict;
using namespace std::chrono_literals;
using testing::EndsWith;
using testing::Not;

class RtspAuthentication : public testing::Test {
protected:
    std::string MakeNonce() {
        auto const challenge = ParseDigestParameters(authentication.MakeChallenge(false, now));
        return challenge.value().at("nonce");
    }

    /// Credentials for DESCRIBE, as players send them.
    static test::DigestCredentials Make(std::string const& nonce) {
        test::DigestCredentials credentials{.password = "right", .nonce = nonce};
        credentials.method = "DESCRIBE";
        credentials.uri = "rtsp://h/channels/1";
        credentials.algorithm.clear();
        credentials.qop.clear();
        return credentials;
    }

    /// The verdict on credentials over a connection that uses this nonce.
    Authentication::Verdict Check(test::DigestCredentials const& credentials, std::string& nonce) {
        return authentication.Check(credentials.Write(), "DESCRIBE", nonce, now);
    }

    Authentication::Verdict Check(test::DigestCredentials const& credentials) {
        std::string nonce;
        return Check(credentials, nonce);
    }

    Authentication authentication{authentication::MakeHa1("admin", authentication::Realm, "right")};
    Authentication::Clock::time_point now{1h};
};

TEST_F(RtspAuthentication, AcceptsTheRightPassword) { EXPECT_EQ(Check(Make(MakeNonce())), Right); }

TEST_F(RtspAuthentication, RefusesWhatIsWrong) {
    auto const nonce = MakeNonce();
    auto password = Make(nonce);
    password.password = "wrong";
    auto user = Make(nonce);
    user.user = "root";
    auto method = Make(nonce);
    method.method = "SETUP";
    for (auto const& wrong : {password, user, method}) EXPECT_EQ(Check(wrong), Wrong) << wrong.Write();
    std::string bound;
    for (auto const* text : {"Digest", "Digest username=\"admin\"", "digest nonsense"})
        EXPECT_EQ(authentication.Check(text, "DESCRIBE", bound, now), Wrong) << text;
}

TEST_F(RtspAuthentication, RefusesWithoutACheckWhatItDoesNotOffer) {
    auto const nonce = MakeNonce();
    auto algorithm = Make(nonce);
    algorithm.algorithm = "SHA-256";
    auto qop = Make(nonce);
    qop.qop = "auth-int";
    for (auto const& other : {algorithm, qop}) EXPECT_EQ(Check(other), Unchecked) << other.Write();
    std::string bound;
    for (auto const* text : {"", "Basic YWRtaW46cmlnaHQ=", "Bearer abc"})
        EXPECT_EQ(authentication.Check(text, "DESCRIBE", bound, now), Unchecked) << text;
}

TEST_F(RtspAuthentication, RefusesEverythingWithoutAHash) {
    for (auto const* hash : {"", "short", "ffffffffffffffffffffffffffffffff\nother"}) {
        Authentication closed(hash);
        std::string nonce;
        EXPECT_EQ(closed.Check(Make("a").Write(), "DESCRIBE", nonce, now), Wrong) << hash;
    }
}

TEST_F(RtspAuthentication, RefusesNoncesThatItDidNotMake) {
    EXPECT_EQ(Check(Make("0123456789abcdef")), Stale);
    EXPECT_EQ(Check(Make("")), Stale);
}

TEST_F(RtspAuthentication, LetsAConnectionUseItsNonceAsLongAsItLasts) {
    std::string nonce;
    auto const credentials = Make(MakeNonce());
    EXPECT_EQ(Check(credentials, nonce), Right);
    now += 24h;
    EXPECT_EQ(Check(credentials, nonce), Right);
}

TEST_F(RtspAuthentication, LetsNoOtherConnectionUseTheSameNonce) {
    auto const credentials = Make(MakeNonce());
    EXPECT_EQ(Check(credentials), Right);
    EXPECT_EQ(Check(credentials), Stale) << "replayed by an eavesdropper";
}

TEST_F(RtspAuthentication, RefusesNoncesThatAreFirstUsedTooLate) {
    auto const credentials = Make(MakeNonce());
    now += UsedResponses::LongestLife;
    EXPECT_EQ(Check(credentials), Stale);
}

TEST_F(RtspAuthentication, SaysInAChallengeThatOnlyTheNonceWasRefused) {
    EXPECT_THAT(authentication.MakeChallenge(true), EndsWith(", stale=true"));
    EXPECT_THAT(authentication.MakeChallenge(false), Not(EndsWith(", stale=true")));
}

} // namespace
} // namespace zarn::host::video::rtsp
