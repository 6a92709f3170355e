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
    static test::DigestCredentials Make(std::string nonce) {
        return {.password = "right",
                .nonce = std::move(nonce),
                .method = "DESCRIBE",
                .uri = "rtsp://h/channels/1",
                .algorithm = "",
                .qop = ""};
    }

    /// The same with one part changed.
    test::DigestCredentials MakeWith(std::string test::DigestCredentials::*part, char const* value) {
        auto credentials = Make(MakeNonce());
        credentials.*part = value;
        return credentials;
    }

    /// The verdict on credentials over a connection that uses this nonce.
    Authentication::Verdict Check(test::DigestCredentials const& credentials, std::string& nonce) {
        return authentication.Check(credentials.Write(), "DESCRIBE", nonce, now);
    }

    /// The verdict on a field over a new connection.
    Authentication::Verdict Check(std::string_view field) {
        std::string nonce;
        return authentication.Check(field, "DESCRIBE", nonce, now);
    }

    Authentication::Verdict Check(test::DigestCredentials const& credentials) { return Check(credentials.Write()); }

    Authentication authentication{authentication::MakeHa1("admin", authentication::Realm, "right")};
    Authentication::Clock::time_point now{1h};
};

TEST_F(RtspAuthentication, AcceptsTheRightPassword) { EXPECT_EQ(Check(Make(MakeNonce())), Right); }

TEST_F(RtspAuthentication, RefusesWhatIsWrong) {
    using Credentials = test::DigestCredentials;
    EXPECT_EQ(Check(MakeWith(&Credentials::password, "wrong")), Wrong);
    EXPECT_EQ(Check(MakeWith(&Credentials::user, "root")), Wrong);
    EXPECT_EQ(Check(MakeWith(&Credentials::method, "SETUP")), Wrong);
    for (std::string_view const field : {"Digest", "Digest username=\"admin\"", "digest nonsense"})
        EXPECT_EQ(Check(field), Wrong) << field;
}

TEST_F(RtspAuthentication, RefusesWithoutACheckWhatItDoesNotOffer) {
    EXPECT_EQ(Check(MakeWith(&test::DigestCredentials::algorithm, "SHA-256")), Unchecked);
    EXPECT_EQ(Check(MakeWith(&test::DigestCredentials::qop, "auth-int")), Unchecked);
    for (std::string_view const field : {"", "Basic YWRtaW46cmlnaHQ=", "Bearer abc"})
        EXPECT_EQ(Check(field), Unchecked) << field;
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
