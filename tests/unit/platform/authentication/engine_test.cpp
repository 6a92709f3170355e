#include <zarn/authentication/digest.h>
#include <zarn/authentication/engine.h>
#include <zarn/authentication/ha1.h>

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using zarn::authentication::MakeHa1;

std::string const Ha1 = MakeHa1("admin", "testrealm@host.com", "Circle Of Life");

/// The parameters of a digest check; tests may change them.
struct Check {
    char const* component = "zarn.service.onvif";
    char const* empty = "";
    char const* user = "admin";
    std::string response;
    char const* method = "POST";
    char const* uri = "/onvif/device_service";
    char const* nonce = "dcd98b7102dd2f0e8b11d0f600bfb0c093";
    char const* nc = "00000001";
    char const* cnonce = "0a4f113b";
    char const* qop = "auth";

    /// Computes the correct response for the parameters.
    void Answer(std::string const& ha1 = Ha1) {
        response = zarn::authentication::MakeDigestResponse({ha1, method, uri, nonce, nc, cnonce, qop});
    }

    bool operator()(ZarnAuthenticationEngine const& engine) const {
        return ZarnAuthenticationCheckDigest(&engine, component, empty, user, response.c_str(), method, uri, nonce, nc,
                                             cnonce, qop);
    }
};

class AuthenticationEngine : public testing::Test {
protected:
    AuthenticationEngine() {
        engine.SetHa1(Ha1);
        check.Answer();
    }

    ZarnAuthenticationEngine engine;
    Check check;
};

TEST_F(AuthenticationEngine, AcceptsTheRightAnswer) { EXPECT_TRUE(check(engine)); }

TEST_F(AuthenticationEngine, AcceptsTheExampleOfTheStandardForItsPassword) {
    // RFC 2617, 3.5: HA1 of the user Mufasa, used for admin here.
    engine.SetHa1("939e7578ed9e3c518a452acee763bce9");
    check.method = "GET";
    check.uri = "/dir/index.html";
    check.response = "6629fae49393a05397450978507c4ef1";
    EXPECT_TRUE(check(engine));
}

TEST_F(AuthenticationEngine, AcceptsTheOlderFormWithoutQop) {
    check.qop = "";
    check.Answer();
    EXPECT_TRUE(check(engine));
}

TEST_F(AuthenticationEngine, RefusesAnAnswerToOtherParts) {
    for (auto const part : {&Check::method, &Check::uri, &Check::nonce, &Check::nc, &Check::cnonce}) {
        auto other = check;
        other.*part = "other";
        EXPECT_FALSE(other(engine));
    }
}

TEST_F(AuthenticationEngine, RefusesAnotherPassword) {
    check.Answer(MakeHa1("admin", "testrealm@host.com", "circle of life"));
    EXPECT_FALSE(check(engine));
}

TEST_F(AuthenticationEngine, RefusesAnAnswerOfAnotherLength) {
    auto const right = check.response;
    for (auto const& wrong : {std::string(), right.substr(1), right.substr(0, 31), right + "0"}) {
        check.response = wrong;
        EXPECT_FALSE(check(engine));
    }
}

TEST_F(AuthenticationEngine, RefusesOtherUsers) {
    for (auto const* const user : {"", "root", "Admin", "admin ", "admi"}) {
        check.user = user;
        EXPECT_FALSE(check(engine)) << user;
    }
}

TEST_F(AuthenticationEngine, RefusesOtherQualitiesOfProtection) {
    for (auto const* const qop : {"auth-int", "auth,auth-int", "AUTH", " auth"}) {
        check.qop = qop;
        check.Answer();
        EXPECT_FALSE(check(engine)) << qop;
    }
}

TEST_F(AuthenticationEngine, IgnoresComponentAndTheUnusedParameter) {
    check.component = "other";
    check.empty = "not empty";
    EXPECT_TRUE(check(engine));
}

TEST_F(AuthenticationEngine, TreatsNullStringsAsEmpty) {
    EXPECT_FALSE(ZarnAuthenticationCheckDigest(&engine, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                               nullptr, nullptr, nullptr));
    check.uri = "";
    check.qop = "";
    check.Answer();
    EXPECT_TRUE(ZarnAuthenticationCheckDigest(&engine, nullptr, nullptr, "admin", check.response.c_str(), "POST",
                                              nullptr, check.nonce, nullptr, nullptr, nullptr));
}

TEST_F(AuthenticationEngine, AcceptsAnHa1InAnyCase) {
    std::string upper = Ha1;
    for (char& character : upper) {
        if (character >= 'a') character = static_cast<char>(character - 'a' + 'A');
    }
    engine.SetHa1(upper);
    EXPECT_EQ(engine.GetHa1("admin"), Ha1);
    EXPECT_TRUE(check(engine));
}

TEST_F(AuthenticationEngine, RefusesAnInvalidHa1WithoutRepeatingIt) {
    for (auto const& wrong : {Ha1.substr(1), Ha1 + "0", "g" + Ha1.substr(1), std::string("secret")}) {
        try {
            engine.SetHa1(wrong);
            ADD_FAILURE() << "accepted";
        } catch (std::invalid_argument const& error) {
            EXPECT_STREQ(error.what(), "HA1 of admin: not 32 hexadecimal characters");
        }
    }
    EXPECT_EQ(engine.GetHa1("admin"), Ha1);
}

TEST_F(AuthenticationEngine, KnowsNoHa1OfOtherUsers) { EXPECT_EQ(engine.GetHa1("root"), ""); }

TEST_F(AuthenticationEngine, RefusesEveryoneWithoutAPassword) {
    engine.SetHa1("");
    EXPECT_FALSE(check(engine));
    check.Answer("");
    EXPECT_FALSE(check(engine));
    EXPECT_FALSE(check(ZarnAuthenticationEngine()));
}

TEST_F(AuthenticationEngine, IsEnabledByDefault) {
    EXPECT_TRUE(ZarnAuthenticationIsEnabled(&engine));
    engine.SetEnabled(false);
    EXPECT_FALSE(ZarnAuthenticationIsEnabled(&engine));
    engine.SetEnabled(true);
    EXPECT_TRUE(ZarnAuthenticationIsEnabled(&engine));
}

TEST_F(AuthenticationEngine, RefusesEveryoneWhenNull) {
    EXPECT_TRUE(ZarnAuthenticationIsEnabled(nullptr));
    EXPECT_FALSE(ZarnAuthenticationCheckDigest(nullptr, "", "", "admin", check.response.c_str(), check.method,
                                               check.uri, check.nonce, check.nc, check.cnonce, check.qop));
}

/// Records what it is asked and returns the answer set by the test.
class FakeReplayCheck final : public zarn::authentication::ReplayCheck {
public:
    bool Accept(zarn::authentication::DigestUse const& credentials) override {
        questions.push_back(
            {std::string(credentials.nonce), std::string(credentials.nc), std::string(credentials.cnonce)});
        return answers;
    }

    std::vector<std::vector<std::string>> questions;
    bool answers = true;
};

class AuthenticationEngineWithReplayCheck : public AuthenticationEngine {
protected:
    AuthenticationEngineWithReplayCheck() { guarded.SetHa1(Ha1); }

    FakeReplayCheck replays;
    ZarnAuthenticationEngine guarded{&replays};
};

TEST_F(AuthenticationEngineWithReplayCheck, ConsultsItForARightAnswer) {
    EXPECT_TRUE(check(guarded));
    EXPECT_THAT(replays.questions, testing::ElementsAre(testing::ElementsAre(check.nonce, check.nc, check.cnonce)));
}

TEST_F(AuthenticationEngineWithReplayCheck, RefusesWhenItRefuses) {
    replays.answers = false;
    EXPECT_FALSE(check(guarded));
}

TEST_F(AuthenticationEngineWithReplayCheck, DoesNotConsultItForAWrongAnswer) {
    check.uri = "/onvif/other";
    EXPECT_FALSE(check(guarded));
    check.Answer();
    check.user = "root";
    EXPECT_FALSE(check(guarded));
    EXPECT_THAT(replays.questions, testing::IsEmpty());
}

TEST_F(AuthenticationEngineWithReplayCheck, PassesNoNonceCountWithoutQop) {
    check.qop = "";
    check.Answer();
    EXPECT_TRUE(check(guarded));
    EXPECT_THAT(replays.questions, testing::ElementsAre(testing::ElementsAre(check.nonce, "", "")));
}

TEST_F(AuthenticationEngine, AcceptsARepeatedAnswerWithoutAReplayCheck) {
    EXPECT_TRUE(check(engine));
    EXPECT_TRUE(check(engine));
}

TEST_F(AuthenticationEngine, RefusesAnAnswerMadeFromTheDummyHa1) {
    check.user = "root";
    check.Answer(std::string(32, '0'));
    EXPECT_FALSE(check(engine));
    check.user = "admin";
    engine.SetHa1("");
    EXPECT_FALSE(check(engine));
}

TEST_F(AuthenticationEngine, MayChangeDuringChecks) {
    std::thread changing([this] {
        for (int count = 0; count < 1000; ++count) {
            engine.SetHa1(Ha1);
            engine.SetEnabled(count % 2 == 0);
        }
    });
    for (int count = 0; count < 1000; ++count) {
        EXPECT_TRUE(check(engine));
        static_cast<void>(ZarnAuthenticationIsEnabled(&engine));
    }
    changing.join();
}

} // namespace
