#include "host/settings.h"
#include "host/status.h"

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>

#include <memory>

namespace zarn::host {
namespace {

TEST(Status, ReportsChannelsModuleAndListeners) {
    auto const root = std::make_shared<configuration::node::Root>();
    DescribeSettings(*root);
    root->FromJson(
        boost::json::parse(R"({"settings": {"web_port": 8081}, "channels": {"7": {"name": "A", "password": "sesame",
        "video": {"codec": "video/x-h264", "width": 640, "height": 360, "rate": "15/2"}}}})"));
    video::Engine engine({.port = 0, .authenticate = false, .ha1 = ""});
    engine.SetChannels(video::ReadChannels(*root));
    web::Admission admission;
    auto const slot = admission.BeginExchange({});

    auto const status = MakeStatus(*root, engine, admission, {}, true, std::chrono::seconds(5));

    EXPECT_EQ(status.at("status"), "ok");
    EXPECT_EQ(status.at("uptime_seconds"), 5);
    EXPECT_EQ(status.at("module").at("enabled"), false);
    EXPECT_EQ(status.at("listeners"),
              boost::json::parse(R"({"web": {"port": 8081, "tls": true, "connections": 0, "exchanges": 1},
        "rtsp": {"port": )" + std::to_string(engine.GetPort()) +
                                 "}}"));
    EXPECT_EQ(status.at("events"),
              boost::json::parse(R"({"mqtt": {"state": "off", "detail": "", "received": 0, "refused": 0, "events": 0},
                               "subscriptions": {"count": 0, "queued": 0, "list": []}})"));
    EXPECT_EQ(status.at("channels"),
              boost::json::parse(R"([{"id": "7", "state": "described", "detail": "", "codec": "video/x-h264",
        "width": 640, "height": 360, "rate": "15/2", "frame_age_ms": null, "restarts": 0}])"));
    EXPECT_THAT(boost::json::serialize(status), testing::Not(testing::HasSubstr("sesame")));
}

TEST(Status, IsDegradedWhenAChannelHasFailed) {
    auto const root = std::make_shared<configuration::node::Root>();
    DescribeSettings(*root);
    video::Engine engine({.port = 0, .authenticate = false, .ha1 = ""});
    engine.SetChannels({{.id = "1", .source = "test:none-such", .user = "", .password = "", .described = {}}});
    auto const status = MakeStatus(*root, engine, web::Admission(), {}, false, std::chrono::seconds(0));
    EXPECT_EQ(status.at("status"), "degraded");
    EXPECT_EQ(status.at("channels").at(0).at("state"), "failed");
    EXPECT_THAT(boost::json::serialize(status), testing::Not(testing::HasSubstr("none-such")));
}

TEST(Status, IsDegradedWhenTheMqttBrokerIsUnreachable) {
    auto const root = std::make_shared<configuration::node::Root>();
    DescribeSettings(*root);
    video::Engine const engine({.port = 0, .authenticate = false, .ha1 = ""});
    auto const make = [&](events::MqttState state) {
        events::MqttStatus const mqtt{.state = state, .detail = "why", .received = 3, .refused = 1, .events = 5};
        return MakeStatus(*root, engine, web::Admission(), mqtt, false, std::chrono::seconds(0));
    };
    EXPECT_EQ(make(events::MqttState::Connecting).at("status"), "ok");
    EXPECT_EQ(make(events::MqttState::Connected).at("status"), "ok");
    auto const status = make(events::MqttState::Waiting);
    EXPECT_EQ(status.at("status"), "degraded");
    EXPECT_EQ(status.at("events").at("mqtt"),
              boost::json::parse(R"({"state": "waiting", "detail": "why", "received": 3, "refused": 1, "events": 5})"));
}

} // namespace
} // namespace zarn::host
