#include <service/onvif/is_authenticated.h>
#include <service/onvif/soap_context.h>
#include <zarn/authentication/engine.h>
#include <zarn/authentication/realm.h>

#include <gtest/gtest.h>
#include <soapH.h>

namespace zarn::service::onvif {
namespace {

class IsAuthenticatedTest : public testing::Test {
protected:
    std::shared_ptr<soap> context = MakeSoapContext();
    ZarnAuthenticationEngine engine;
};

TEST_F(IsAuthenticatedTest, IsTrueWithoutALookAtTheRequestWhileTheHostRequiresNone) {
    engine.SetEnabled(false);
    EXPECT_TRUE(IsAuthenticated(context.get(), &engine));
    EXPECT_EQ(context->authrealm, nullptr);
}

TEST_F(IsAuthenticatedTest, IsFalseAndSetsTheRealmWhenTheUserOrTheRealmIsMissingOrEmpty) {
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
