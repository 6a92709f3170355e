#include "device_fixture.h"
#include "support/operation_element.h"

#include <zarn/authentication/realm.h>

#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <vector>

namespace zarn::test {
namespace {

using authentication::Realm;

class Authentication : public DeviceFixture {
protected:
    Reply AskForUsers(Sending const& sending) { return Ask("<tds:GetUsers/>", sending); }

    /// Sends GetUsers with this Authorization value.
    Reply AskForUsersAs(std::string const& authorization) {
        return AskForUsers({.fields = {{"Authorization", authorization}}, .authenticated = false});
    }
};

TEST_F(Authentication, ServesEveryRequestWhileTheHostRequiresNone) {
    engine.SetEnabled(false);
    EXPECT_EQ(AskForUsers({.authenticated = false}).status, 200);
    EXPECT_EQ(AskForUsers({.password = "wrong"}).status, 200);
}

TEST_F(Authentication, ChallengesARequestWithoutCredentialsWithTheDefaultRealm) {
    EXPECT_THAT(AskForUsers({.authenticated = false}), IsChallenge(Realm));
}

TEST_F(Authentication, UsesARealmOfSeventeenCharacters) { EXPECT_EQ(std::string(Realm).size(), 17U); }

TEST_F(Authentication, ChallengesWithANewNonceEveryTime) {
    EXPECT_NE(AskForUsers({.authenticated = false}).fields.at("WWW-Authenticate"),
              AskForUsers({.authenticated = false}).fields.at("WWW-Authenticate"));
}

TEST_F(Authentication, OffersOnlyQopAuth) {
    for (auto const& sending : {Sending{.authenticated = false}, Sending{.password = "wrong"}}) {
        auto const challenge = AskForUsers(sending).fields.at("WWW-Authenticate");
        EXPECT_THAT(challenge, testing::HasSubstr("qop=\"auth\""));
        EXPECT_THAT(challenge, testing::Not(testing::HasSubstr("auth-int")));
    }
}

TEST_F(Authentication, SendsASingleMd5Challenge) {
    auto const challenge = AskForUsers({.authenticated = false}).fields.at("WWW-Authenticate");
    EXPECT_THAT(challenge, testing::MatchesRegex("Digest [^,]*algorithm=MD5,.*|Digest .*[ ,]algorithm=MD5(,.*)?"));
    EXPECT_EQ(challenge.find("Digest", 1), std::string::npos) << challenge;
}

TEST_F(Authentication, ReadsTheNameOfTheFieldAndTheDigestInAnyCase) {
    auto authorization = MakeAuthorization({});
    EXPECT_EQ(AskForUsers({.fields = {{"authorization", authorization}}, .authenticated = false}).status, 200);
    for (auto at = authorization.rfind("response=\"") + 10; at < authorization.size(); ++at)
        authorization[at] = static_cast<char>(std::toupper(authorization[at]));
    EXPECT_EQ(AskForUsers({.fields = {{"AUTHORIZATION", authorization}}, .authenticated = false}).status, 200);
}

TEST_F(Authentication, ServesTheRightPassword) { EXPECT_EQ(AskForUsers({}).status, 200); }

TEST_F(Authentication, RefusesAWrongPassword) { EXPECT_THAT(AskForUsers({.password = "wrong"}), IsChallenge(Realm)); }

TEST_F(Authentication, VerifiesEveryDigestAgainstTheAdministrator) {
    EXPECT_THAT(AskForUsers({.user = "operator"}), IsChallenge(Realm));
    auto authorization = MakeAuthorization({});
    authorization.replace(authorization.find("\"admin\""), 7, "\"operator\"");
    EXPECT_EQ(AskForUsers({.fields = {{"Authorization", authorization}}, .authenticated = false}).status, 200);
}

TEST_F(Authentication, AcceptsADigestOverTheWholePathWithItsQuery) {
    EXPECT_EQ(AskForUsers({.path = "/onvif/events_service/Subscription?Idx=1"}).status, 200);
}

TEST_F(Authentication, AcceptsADigestOverThePathWithoutItsQuery) {
    EXPECT_EQ(AskForUsers({.path = "/onvif/events_service/Subscription?Idx=1?x",
                           .digestPath = "/onvif/events_service/Subscription"})
                  .status,
              200);
}

TEST_F(Authentication, RefusesADigestOverAnotherPath) {
    EXPECT_THAT(AskForUsers({.digestPath = "/onvif/media_service"}), IsChallenge(Realm));
}

TEST_F(Authentication, AcceptsOnlyADigestMadeForPost) {
    EXPECT_EQ(
        AskForUsers({.fields = {{"Authorization", MakeAuthorization({}, "POST")}}, .authenticated = false}).status,
        200);
    EXPECT_THAT(AskForUsers({.fields = {{"Authorization", MakeAuthorization({}, "GET")}}, .authenticated = false}),
                IsChallenge(Realm));
}

TEST_F(Authentication, ReturnsTheClientsRealmWhenItsCredentialsAreWrong) {
    auto const wrong = R"(Digest username="admin", realm="elsewhere", nonce="1", uri="/", response="00")";
    EXPECT_THAT(AskForUsers({.fields = {{"Authorization", wrong}}, .authenticated = false}), IsChallenge("elsewhere"));
}

TEST_F(Authentication, ReplacesARealmThatWouldBreakTheChallenge) {
    for (std::string const& realm :
         {std::string("a%22%0d%0aSet-Cookie:%20x=1%0d%0aX:%22"), std::string("a%0aX:1"), std::string("%22"),
          std::string("\"a\\\\b\""), std::string(129, 'a'), std::string(5000, 'a')}) {
        auto const reply = AskForUsers(
            {.fields = {{"Authorization", "Digest username=admin, realm=" + realm + ", nonce=1, uri=/, response=00"}},
             .authenticated = false});
        EXPECT_THAT(reply, IsChallenge(Realm)) << realm;
        EXPECT_FALSE(reply.fields.contains("Set-Cookie"));
        EXPECT_FALSE(reply.fields.contains("X"));
    }
}

TEST_F(Authentication, ChallengesCredentialsWithoutACompleteDigest) {
    EXPECT_THAT(AskForUsers({.fields = {{"Authorization", "Basic YWRtaW46c2VjcmV0"}}, .authenticated = false}),
                IsChallenge(Realm));
    EXPECT_THAT(AskForUsers({.fields = {{"Authorization", "Digest username=\"admin\""}}, .authenticated = false}),
                IsChallenge(Realm));
    EXPECT_THAT(AskForUsers({.fields = {{"Authorization", "Digest"}}, .authenticated = false}), IsChallenge(Realm));
}

TEST_F(Authentication, ChallengesADigestWithoutAValidResponse) {
    auto authorization = MakeAuthorization({});
    authorization.erase(authorization.find(", response="));
    for (auto const* rest : {"", ", response=", ", response", R"(, response="")", R"(, response="0")",
                             R"(, response="00000000000000000000000000000000")", R"(, response="no digits")"})
        EXPECT_THAT(AskForUsersAs(authorization + rest), IsChallenge(Realm)) << rest;
    EXPECT_EQ(AskForUsers({}).status, 200);
}

TEST_F(Authentication, ChallengesADigestOfAnotherAlgorithm) {
    // Each contains the correct MD5 digest but names another algorithm.
    for (auto const* algorithm : {"SHA-256", "MD5-sess", "md5-sess", "\"MD5-sess\"", "SHA-256-sess", "SHA-512-256",
                                  "MD", "MD55", "*", "\"MD5 \""}) {
        auto authorization = MakeAuthorization({});
        authorization.replace(authorization.find("algorithm=MD5") + 10, 3, algorithm);
        EXPECT_THAT(AskForUsersAs(authorization), IsChallenge(Realm)) << algorithm;
        EXPECT_EQ(AskForUsers({}).status, 200);
    }
}

TEST_F(Authentication, AcceptsMd5InAnyCaseAndByDefault) {
    for (auto const* algorithm :
         {"algorithm=md5, ", "algorithm=\"MD5\", ", "Algorithm=Md5, ", "algorithm=\"\", ", ""}) {
        auto authorization = MakeAuthorization({});
        authorization.replace(authorization.find("algorithm=MD5, "), 15, algorithm);
        EXPECT_EQ(AskForUsersAs(authorization).status, 200) << algorithm;
    }
}

TEST_F(Authentication, IgnoresUsernameTokens) {
    auto const token =
        R"(<wsse:Security s:mustUnderstand="1" xmlns:wsse="http://docs.oasis-open.org/wss/2004/01/oasis-200401-wss-wssecurity-secext-1.0.xsd">)"
        R"(<wsse:UsernameToken><wsse:Username>admin</wsse:Username><wsse:Password>secret</wsse:Password></wsse:UsernameToken></wsse:Security>)";
    EXPECT_THAT(AskForUsers({.header = token, .authenticated = false}), IsChallenge(Realm));
}

TEST_F(Authentication, AcceptsOnlyQopAuthOrADigestWithoutQop) {
    auto const without = [](std::string text, std::string const& part) {
        return text.erase(text.find(part), part.size());
    };
    auto const right = MakeAuthorization({});
    auto integrity = right;
    integrity.replace(integrity.find("qop=auth"), 8, "qop=auth-int");
    EXPECT_THAT(AskForUsersAs(integrity), IsChallenge(Realm));
    EXPECT_THAT(AskForUsersAs(without(right, "cnonce=\"fedcba98\", ")), IsChallenge(Realm));
    EXPECT_THAT(AskForUsersAs(without(right, "nonce=\"0123456789abcdef\", ")), IsChallenge(Realm));
    EXPECT_THAT(AskForUsersAs(without(right, "qop=auth, ")), IsChallenge(Realm)); // the response was computed with qop
    EXPECT_EQ(AskForUsersAs(MakeOldAuthorization({})).status, 200);
}

class AccessOf : public DeviceFixture, public testing::WithParamInterface<bindings::Operation> {
protected:
    std::string const request = MakeElement(GetParam());
};

std::vector<bindings::Operation> ListServed(bool needsLogin) {
    std::vector<bindings::Operation> served;
    for (auto const& operation : bindings::Operations)
        if (operation.IsServed() && (operation.access == bindings::Access::Login) == needsLogin)
            served.push_back(operation);
    return served;
}

std::string GetName(testing::TestParamInfo<bindings::Operation> const& info) {
    return std::string(info.param.prefix) + "_" + std::string(info.param.name);
}

using OperationWithLogin = AccessOf;

TEST_P(OperationWithLogin, ChallengesARequestWithoutValidCredentials) {
    root = std::make_shared<configuration::node::Root>(); // the operation would fail if it read the configuration
    EXPECT_THAT(AskAnonymously(request), IsChallenge(Realm));
    EXPECT_THAT(Ask(request, {.password = "wrong"}), IsChallenge(Realm));
}

INSTANTIATE_TEST_SUITE_P(All, OperationWithLogin, testing::ValuesIn(ListServed(true)), GetName);

using OpenOperation = AccessOf;

TEST_P(OpenOperation, IsServedWithoutCredentials) {
    EXPECT_EQ(AskAnonymously(request).status, 200);
    EXPECT_EQ(Ask(request, {.password = "wrong"}).status, 200);
}

INSTANTIATE_TEST_SUITE_P(All, OpenOperation, testing::ValuesIn(ListServed(false)), GetName);

} // namespace
} // namespace zarn::test
