#include "host/access/access_settings.h"
#include "host/web/web_settings.h"

#include <boost/json/parse.hpp>
#include <gtest/gtest.h>

#include <memory>

namespace zarn::host::web {
namespace {

class WebSettings : public testing::Test {
protected:
    WebSettings() {
        root->Schema(MakeAccessSchemas());
        root->Schema(MakeWebSchemas());
    }

    std::shared_ptr<configuration::node::Root> root = std::make_shared<configuration::node::Root>();
};

TEST_F(WebSettings, HaveTheDefaultsOfTheServer) { EXPECT_EQ(ReadLimits(*root), Limits()); }

TEST_F(WebSettings, ReadEveryLimit) {
    root->FromJson(boost::json::parse(R"({"settings": {"limits": {"connections": 1, "connections_per_address": 2,
             "exchanges": 3, "body_bytes": 4096, "header_seconds": 5, "idle_seconds": 6}}})"));
    EXPECT_EQ(ReadLimits(*root), (Limits{.connections = 1,
                                         .connectionsPerAddress = 2,
                                         .exchanges = 3,
                                         .bodyBytes = 4096,
                                         .headerTime = std::chrono::seconds(5),
                                         .idleTime = std::chrono::seconds(6)}));
}

} // namespace
} // namespace zarn::host::web
