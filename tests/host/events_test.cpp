#include "support/broker.h"
#include "support/eventually.h"
#include "support/host_process.h"
#include "support/pull_point_client.h"
#include "support/raw_connection.h"

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <string>
#include <utility>
#include <vector>

namespace zarn::test {
namespace {

using testing::HasSubstr;
using testing::Not;

/// A configuration with MQTT settings.
std::string ConfigureMqtt(std::string const& mqtt) {
    return R"({"settings": {"web_port": 0, "rtsp_port": 0, "events": {"mqtt": )" + mqtt + "}}}";
}

std::string Subscribe(Broker const& broker, std::string const& topic, std::string const& more = {}) {
    return ConfigureMqtt(R"({"enabled": true, "client_id": "a test's host", "url": ")" + broker.GetUrl() +
                         R"(", "topic": ")" + topic + '"' + more + "}");
}

boost::json::value GetIntake(HostProcess const& host) { return host.GetHealth().at("events").at("mqtt"); }

bool AwaitIntake(HostProcess const& host, char const* field, boost::json::value const& value) {
    return Eventually([&] { return GetIntake(host).at(field) == value; });
}

/// Posts events with curl and digest login; returns the answer and its status.
std::string Post(HostProcess const& host, std::string const& body, std::string const& password) {
    Process curl({"curl", "-s", "-w", "%{http_code}", "--digest", "-u", "admin:" + password, "-H",
                  "Content-Type: application/json", "-d", body, host.GetUrl() + "/api/events"});
    EXPECT_EQ(curl.Wait(), 0) << curl.GetLog();
    return curl.GetOutput();
}

TEST(Events, ArriveOverHttpFromAuthenticatedClients) {
    HostProcess const host;
    EXPECT_EQ(Post(host, R"([{"type": "presence"}, {"type": "count"}])", host.GetPassword()), "{\"taken\":2}\n202");
    EXPECT_EQ(Post(host, R"([{"type": "presence"}, {"type": 1}])", host.GetPassword()),
              "{\"error\":\"event 2: type: 1 is not a text\"}\n400");
    EXPECT_THAT(Post(host, R"({"type": "presence"})", "a wrong password"), testing::EndsWith("401"));
}

TEST(Events, ObeyTheBoundsOfOtherRequests) {
    HostProcess const host(
        {.arguments = {"--set", "settings.authentication.enabled=false", "--set", "settings.limits.body_bytes=1024"}});
    auto const post = [&](std::string const& body, std::string const& fields) {
        return RawConnection(host.GetPort())
            .Exchange("POST /api/events HTTP/1.1\r\nHost: h\r\n" + fields +
                      "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body)
            .status;
    };
    std::string const event = R"({"type": "presence"})";
    EXPECT_EQ(post(event + std::string(1024 - event.size(), ' '), {}), 202U);
    EXPECT_EQ(post(event + std::string(1025 - event.size(), ' '), {}), 413U);
    EXPECT_EQ(post(event, "Content-Type: text/xml\r\n"), 415U);
    EXPECT_EQ(RawConnection(host.GetPort()).Exchange("GET /api/events HTTP/1.1\r\nHost: h\r\n\r\n").status, 405U);
}

TEST(Events, ArriveOverMqtt) {
    Broker const broker;
    HostProcess const host({.configuration = Subscribe(broker, "site/+/events")});
    ASSERT_TRUE(AwaitIntake(host, "state", "connected"));
    broker.Publish("site/1/events", R"([{"type": "presence"}, {"type": "count"}])");
    broker.Publish("site/2/events", R"({"type": "presence", "colour": "red"})");
    EXPECT_TRUE(AwaitIntake(host, "received", 2));
    EXPECT_EQ(GetIntake(host), boost::json::parse(R"({"state": "connected", "detail": "", "received": 2, "refused": 1,
                                                      "events": 2})"));
    EXPECT_TRUE(host.GetProcess().WaitForLog("event 1: colour: there is no such field"));
}

TEST(Events, SurviveRestartsOfBrokerAndHost) {
    Broker broker;
    auto const folder = std::make_shared<TemporaryFolder>();
    HostProcess::Options const options{.configuration = Subscribe(broker, "events"), .folder = folder};
    {
        HostProcess host(options);
        ASSERT_TRUE(AwaitIntake(host, "state", "connected"));
        EXPECT_EQ(host.Stop(), 0);
    }
    broker.PublishNumbered("events", 200);
    broker.Stop();
    HostProcess const host(options);
    EXPECT_TRUE(Eventually([&] {
        auto const health = host.GetHealth();
        return health.at("events").at("mqtt").at("state") == "waiting" && health.at("status") == "degraded";
    }));
    broker.Start();
    EXPECT_TRUE(AwaitIntake(host, "events", 200));
}

TEST(Events, FollowTheConfiguration) {
    Broker const broker;
    HostProcess host({.configuration = ConfigureMqtt("{}")});
    EXPECT_EQ(GetIntake(host).at("state"), "off");
    auto const reload = [&](std::string const& configuration) {
        host.GetFolder().Write("config.json", configuration);
        host.GetProcess().Signal(SIGHUP);
    };
    reload(Subscribe(broker, "events"));
    EXPECT_TRUE(AwaitIntake(host, "state", "connected"));
    reload(ConfigureMqtt(R"({"enabled": true})"));
    EXPECT_TRUE(host.GetProcess().WaitForLog(
        "Keeping the previous MQTT settings: settings.events.mqtt.url: there is no broker"));
    EXPECT_EQ(GetIntake(host).at("state"), "connected");
    reload(ConfigureMqtt("{}"));
    EXPECT_TRUE(AwaitIntake(host, "state", "off"));
}

TEST(Events, ShowNoPassword) {
    Broker const broker("allow_anonymous false\n");
    HostProcess const host(
        {.configuration = Subscribe(broker, "events", R"(, "user": "host", "password": "open sesame")")});
    ASSERT_TRUE(AwaitIntake(host, "state", "waiting"));
    EXPECT_THAT(boost::json::serialize(host.GetHealth()), Not(HasSubstr("sesame")));
    EXPECT_TRUE(host.GetProcess().WaitForLog("login: "));
    EXPECT_THAT(host.GetProcess().GetLog(), Not(HasSubstr("sesame")));
}

TEST(Events, DoNotDelayTheStopOfTheHost) {
    Broker const broker;
    for (auto const& url : {broker.GetUrl(), std::string("mqtt://192.0.2.1")}) {
        HostProcess host({.configuration = ConfigureMqtt(R"({"enabled": true, "url": ")" + url + "\"}")});
        ASSERT_TRUE(Eventually([&] { return GetIntake(host).at("state") != "off"; }));
        host.ExpectStop(std::chrono::seconds(5)); // half of the broker timeout
    }
}

TEST(Events, WithInvalidSettingsPreventTheStart) {
    for (auto const& [mqtt, message] : std::vector<std::pair<std::string, std::string>>{
             {R"({"enabled": true})", "settings.events.mqtt.url: there is no broker"},
             {R"({"url": "mqtt://me:sesame@b"})", "settings.events.mqtt.url: "},
             {R"({"topic": "a#"})", "settings.events.mqtt.topic: \"a#\" is not a topic filter"}}) {
        TemporaryFolder const folder;
        auto const host = HostProcess::Launch({.configuration = ConfigureMqtt(mqtt)}, folder);
        EXPECT_EQ(host->Wait(), 2);
        EXPECT_THAT(host->GetLog(), testing::AllOf(HasSubstr("config.json: " + message), Not(HasSubstr("sesame"))));
    }
}

} // namespace
} // namespace zarn::test
