#include "host/video/rtsp_settings.h"

#include <zarn/configuration/error.h>

#include <boost/json/parse.hpp>
#include <gtest/gtest.h>

#include <memory>

namespace zarn::host::video {
namespace {

class RtspSettingsTest : public testing::Test {
protected:
    RtspSettingsTest() {
        root->Schema(MakeAccessSchemas());
        root->Schema(MakeRtspSchemas());
    }

    void Read(std::string const& limits) {
        root->FromJson(boost::json::parse(R"({"settings": {"limits": )" + limits + "}}"));
    }

    std::shared_ptr<configuration::node::Root> root = std::make_shared<configuration::node::Root>();
};

TEST_F(RtspSettingsTest, AllowAThousandConnectionsByDefault) {
    EXPECT_EQ(ReadRtspLimits(*root).connections, 1000U);
    EXPECT_EQ(ReadRtspLimits(*root).connectionsPerAddress, 256U);
    EXPECT_EQ(RtspSettings().limits.connections, 1000U);
}

TEST_F(RtspSettingsTest, AreRead) {
    Read(R"({"rtsp_connections": 3, "connections_per_address": 2})");
    EXPECT_EQ(ReadRtspLimits(*root).connections, 3U);
    EXPECT_EQ(ReadRtspLimits(*root).connectionsPerAddress, 2U);
}

TEST_F(RtspSettingsTest, RefuseWhatTheServerCannotServe) {
    for (auto const* value : {"0", "10001"})
        EXPECT_THROW(Read(std::string(R"({"rtsp_connections": )") + value + "}"), configuration::Error) << value;
}

} // namespace
} // namespace zarn::host::video
