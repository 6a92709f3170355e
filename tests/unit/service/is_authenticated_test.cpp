#include <service/onvif/is_authenticated.h>
#include <service/onvif/soap_context.h>
#include <zarn/authentication/engine.h>
#include <zarn/authentication/realm.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httpda.h>
#include <soapH.h>

#include <deque>
#include <sstream>
#include <string>
#include <vector>

namespace {

/// Questions that the engine's check has received, and its answers in order.
thread_local std::vector<std::vector<std::string>> Questions;
thread_local std::deque<bool> Answers;

} // namespace

/// Replaces the host's implementation, because the tests are about the questions.
bool ZarnAuthenticationCheckDigest(ZarnAuthenticationEngine const* /*engine*/, char const* component, char const* empty,
                                   char const* user, char const* response, char const* method, char const* uri,
                                   char const* nonce, char const* nc, char const* cnonce, char const* qop) {
    Questions.push_back({component, empty, user, response, method, uri, nonce, nc, cnonce, qop});
    bool const answer = Answers.at(0);
    Answers.pop_front();
    return answer;
}

namespace zarn::service::onvif {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class IsAuthenticatedTest : public testing::Test {
protected:
    static constexpr char Body[] =
        R"(<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope"><s:Body><x/></s:Body></s:Envelope>)";

    /// Authenticates a request to this path with digest credentials; the engine gives these answers.
    /// further  additional parameters, followed by a comma
    bool IsAuthenticatedAt(std::string const& path, std::deque<bool> answers, std::string const& further = "") {
        return IsAuthenticatedBy(further + R"(nonce="n", qop=auth, nc=0000000a, cnonce="c", )", path,
                                 std::move(answers));
    }

    /// The same, where `credentials` are all parameters other than user, realm, URI and response.
    bool IsAuthenticatedBy(std::string const& credentials, std::string const& path, std::deque<bool> answers) {
        std::stringstream input;
        input << "POST " << path << " HTTP/1.1\r\nHost: device\r\nAuthorization: Digest " << credentials
              << R"(username="operator", realm="r", uri="/other", response="0123456789ABCDEF0123456789abcdef")"
              << "\r\nContent-Length: " << sizeof(Body) - 1 << "\r\n\r\n"
              << Body;
        soap_register_plugin_arg(context.get(), http_da, http_da_md5());
        context->is = &input;
        EXPECT_EQ(soap_begin_serve(context.get()), SOAP_OK);
        Questions.clear();
        Answers = std::move(answers);
        return IsAuthenticated(context.get(), &engine);
    }

    /// Matches the question about such a request with this path.
    static auto Question(char const* path) {
        return ElementsAre("zarn.service.onvif", "", "admin", "0123456789abcdef0123456789abcdef", "POST", path, "n",
                           "0000000a", "c", "auth");
    }

    std::shared_ptr<soap> context = MakeSoapContext();
    ZarnAuthenticationEngine engine;
};

TEST_F(IsAuthenticatedTest, ChecksTheClientsDigestForTheAdministrator) {
    EXPECT_TRUE(IsAuthenticatedAt("/onvif/x", {true}));
    EXPECT_THAT(Questions, ElementsAre(Question("/onvif/x")));
}

TEST_F(IsAuthenticatedTest, PassesMissingParametersAsEmptyStrings) {
    EXPECT_TRUE(IsAuthenticatedBy("", "/onvif/x", {true}));
    EXPECT_THAT(Questions,
                ElementsAre(ElementsAre("zarn.service.onvif", "", "admin", "0123456789abcdef0123456789abcdef", "POST",
                                        "/onvif/x", "", "", "", "")));
}

TEST_F(IsAuthenticatedTest, ChecksOnceForAPathWithoutAQuery) {
    EXPECT_FALSE(IsAuthenticatedAt("/onvif/x", {false, true}));
    EXPECT_THAT(Questions, ElementsAre(Question("/onvif/x")));
    EXPECT_STREQ(context->authrealm, "r");
}

TEST_F(IsAuthenticatedTest, ChecksOnceWhenTheWholePathMatches) {
    EXPECT_TRUE(IsAuthenticatedAt("/onvif/x?y=1", {true, false}));
    EXPECT_THAT(Questions, ElementsAre(Question("/onvif/x?y=1")));
}

TEST_F(IsAuthenticatedTest, ChecksAgainWithoutTheQuery) {
    EXPECT_TRUE(IsAuthenticatedAt("/onvif/x?y=1?z", {false, true}));
    EXPECT_THAT(Questions, ElementsAre(Question("/onvif/x?y=1?z"), Question("/onvif/x")));
}

TEST_F(IsAuthenticatedTest, IsFalseWhenBothPathsAreWrong) {
    EXPECT_FALSE(IsAuthenticatedAt("/onvif/x?", {false, false}));
    EXPECT_THAT(Questions, ElementsAre(Question("/onvif/x?"), Question("/onvif/x")));
}

TEST_F(IsAuthenticatedTest, SkipsTheCheckForAnotherAlgorithm) {
    EXPECT_FALSE(IsAuthenticatedAt("/onvif/x?y=1", {true, true}, "algorithm=MD5-sess, "));
    EXPECT_THAT(Questions, IsEmpty());
    EXPECT_STREQ(context->authrealm, "r");
}

TEST_F(IsAuthenticatedTest, ChecksMd5SpeltInAnyCase) {
    EXPECT_TRUE(IsAuthenticatedAt("/onvif/x", {true}, "algorithm=\"mD5\", "));
    EXPECT_THAT(Questions, ElementsAre(Question("/onvif/x")));
}

TEST_F(IsAuthenticatedTest, SkipsTheCheckWhileAuthenticationIsOff) {
    engine.SetEnabled(false);
    EXPECT_TRUE(IsAuthenticatedAt("/onvif/x", {}));
    EXPECT_THAT(Questions, IsEmpty());
}

TEST_F(IsAuthenticatedTest, IsTrueWithoutCredentialsWhileAuthenticationIsOff) {
    engine.SetEnabled(false);
    EXPECT_TRUE(IsAuthenticated(context.get(), &engine));
    EXPECT_EQ(context->authrealm, nullptr);
}

TEST_F(IsAuthenticatedTest, IsFalseAndSetsTheRealmWithoutUserOrRealm) {
    char const* const texts[] = {nullptr, "", "given"};
    for (auto const* user : texts)
        for (auto const* realm : texts) {
            if (user && *user && realm && *realm) continue;
            context->userid = user;
            context->authrealm = realm;
            EXPECT_FALSE(IsAuthenticated(context.get(), &engine));
            EXPECT_STREQ(context->authrealm, authentication::Realm);
        }
}

TEST_F(IsAuthenticatedTest, IsFalseWithoutTheDigestPlugin) {
    context->userid = "admin";
    context->authrealm = "given";
    EXPECT_FALSE(IsAuthenticated(context.get(), &engine));
    EXPECT_STREQ(context->authrealm, "given");
}

} // namespace
} // namespace zarn::service::onvif
