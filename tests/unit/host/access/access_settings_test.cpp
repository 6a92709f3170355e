#include "host/access/access_settings.h"

#include <zarn/configuration/error.h>

#include <boost/json/parse.hpp>
#include <gmock/gmock.h>

#include <memory>
#include <string>

namespace zarn::host {
namespace {

class AccessSettingsTest : public testing::Test {
protected:
    AccessSettingsTest() { root->Schema(MakeAccessSchemas()); }

    void Read(std::string const& settings) { root->FromJson(boost::json::parse(R"({"settings": )" + settings + "}")); }

    std::shared_ptr<configuration::node::Root> root = std::make_shared<configuration::node::Root>();
};

TEST_F(AccessSettingsTest, AskForALoginByDefault) {
    auto const access = ReadAccessSettings(*root);
    EXPECT_TRUE(access.authenticate);
    EXPECT_EQ(access.nonceLife, std::chrono::minutes(5));
    EXPECT_EQ(access.failedLoginsPerMinute, 60U);
}

TEST_F(AccessSettingsTest, AreRead) {
    Read(R"({"authentication": {"enabled": false, "nonce_seconds": 2},
             "limits": {"failed_logins_per_minute": 7, "connections_per_address": 4}})");
    auto const access = ReadAccessSettings(*root);
    EXPECT_FALSE(access.authenticate);
    EXPECT_EQ(access.nonceLife, std::chrono::seconds(2));
    EXPECT_EQ(access.failedLoginsPerMinute, 7U);
    EXPECT_EQ(ReadConnectionsPerAddress(*root), 4U);
}

TEST_F(AccessSettingsTest, LimitTheNonceLifetimeToFiveMinutes) {
    for (std::string const text : {"0", "301"}) {
        try {
            Read(R"({"authentication": {"nonce_seconds": )" + text + "}}");
            FAIL() << text;
        } catch (configuration::Error const& error) {
            EXPECT_EQ(error.what(),
                      "settings.authentication.nonce_seconds: " + text + " is not a number from 1 to 300");
        }
    }
}

} // namespace
} // namespace zarn::host
