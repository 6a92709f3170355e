#include "host/events/mqtt_configuration.h"

#include <zarn/configuration/error.h>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>

#include <memory>
#include <string>

namespace zarn::host::events {
namespace {

using configuration::Error;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class MqttConfiguration : public testing::Test {
protected:
    MqttConfiguration() { root->Schema(MakeMqttSchemas()); }

    MqttSettings Read(std::string const& mqtt) {
        root->FromJson(boost::json::parse(R"({"settings": {"events": {"mqtt": )" + mqtt + "}}}"));
        return ReadMqttSettings(*root);
    }

    std::string GetError(std::string const& mqtt) {
        try {
            Read(mqtt);
            return "";
        } catch (Error const& error) {
            return error.what();
        }
    }

    std::shared_ptr<configuration::node::Root> root = std::make_shared<configuration::node::Root>();
};

TEST_F(MqttConfiguration, IsOffByDefault) {
    EXPECT_EQ(Read("{}"), (MqttSettings{.enabled = false, .topic = "zarn/events"}));
}

TEST_F(MqttConfiguration, GivesEverySetting) {
    EXPECT_EQ(Read(R"({"enabled": true, "url": "mqtts://b", "topic": "t/#", "client_id": "c", "user": "u",
                       "password": "p", "ca_file": "f"})"),
              (MqttSettings{.enabled = true,
                            .url = "mqtts://b",
                            .topic = "t/#",
                            .clientId = "c",
                            .user = "u",
                            .password = "p",
                            .caFile = "f"}));
}

TEST_F(MqttConfiguration, NeedsABrokerWhenItIsEnabled) {
    EXPECT_EQ(GetError(R"({"enabled": true})"), "settings.events.mqtt.url: there is no broker");
}

TEST_F(MqttConfiguration, NeedsAUserForAPassword) {
    EXPECT_EQ(GetError(R"({"password": "sesame"})"), "settings.events.mqtt.user: there is a password but no user");
}

TEST_F(MqttConfiguration, RefusesValuesThatMakeNoSense) {
    EXPECT_THAT(GetError(R"({"topic": ""})"), StartsWith("settings.events.mqtt.topic: \"\" is not a topic filter"));
    EXPECT_THAT(GetError(R"({"topic": "a#"})"), StartsWith("settings.events.mqtt.topic: "));
    EXPECT_THAT(GetError(R"({"url": "http://b"})"), StartsWith("settings.events.mqtt.url: "));
    EXPECT_THAT(GetError(R"({"client_id": "a\u0000b"})"), StartsWith("settings.events.mqtt.client_id: "));
    EXPECT_THAT(GetError(R"({"user": ")" + std::string(4097, 'u') + "\"}"), StartsWith("settings.events.mqtt.user: "));
    EXPECT_THAT(GetError(R"({"enabled": 1})"), StartsWith("settings.events.mqtt.enabled: "));
    EXPECT_THAT(GetError(R"({"port": 1})"), StartsWith("settings.events.mqtt.port"));
}

TEST_F(MqttConfiguration, ShowsNobodyAPassword) {
    EXPECT_THAT(GetError(R"({"url": "mqtt://me:sesame@b"})"),
                AllOf(StartsWith("settings.events.mqtt.url: "), Not(HasSubstr("sesame"))));
    EXPECT_THAT(GetError(R"({"password": "sesame\n"})"),
                AllOf(StartsWith("settings.events.mqtt.password: "), Not(HasSubstr("sesame"))));
    Read(R"({"user": "me", "password": "sesame"})");
    EXPECT_THAT(boost::json::serialize(root->ToJson(configuration::Layer::Effective)), Not(HasSubstr("sesame")));
    EXPECT_THAT(boost::json::serialize(root->ToJson(configuration::Layer::Persisted)), HasSubstr("sesame"));
}

} // namespace
} // namespace zarn::host::events
