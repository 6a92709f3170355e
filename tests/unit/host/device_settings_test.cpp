#include "host/device_settings.h"

#include <service/onvif/manager.h>
#include <zarn/authentication/engine.h>
#include <zarn/configuration/error.h>
#include <zarn/onvif/settings.h>

#include <boost/json/parse.hpp>
#include <gmock/gmock.h>

#include <memory>
#include <string>

namespace zarn::host {
namespace {

class DeviceSettings : public testing::Test {
protected:
    DeviceSettings() { root->Schema(MakeDeviceSchemas()); }

    void Read(std::string const& json) { root->FromJson(boost::json::parse(json)); }

    std::shared_ptr<configuration::node::Root> root = std::make_shared<configuration::node::Root>();
};

TEST_F(DeviceSettings, HaveDefaults) {
    EXPECT_EQ(ReadIdentity(*root).GetProductModel(), "zarn-host");
    EXPECT_FALSE(ReadDiscoveryAnywhere(*root));
}

TEST_F(DeviceSettings, UseTheModulesSchemaForItsSetting) {
    ZarnAuthenticationEngine const engine;
    auto const own = std::make_shared<configuration::node::Root>();
    service::onvif::Manager const manager(&engine, own, {}, {});
    auto const* const path = zarn::onvif::EnabledPath;
    EXPECT_EQ(root->Find(path)->GetSchema(), own->Find(path)->GetSchema());
}

TEST_F(DeviceSettings, KeepAnEmptyIdentityValue) {
    Read(R"({"identity": {"manufacturer": "", "name": "Grün"}})");
    auto const identity = ReadIdentity(*root);
    EXPECT_EQ(identity.GetProductManufacturer(), "");
    EXPECT_EQ(identity.GetProductName(), "Grün");
}

TEST_F(DeviceSettings, TakeLinesOfUpTo256Bytes) {
    EXPECT_NO_THROW(Read(R"({"identity": {"name": ")" + std::string(256, 'a') + R"("}})"));
    EXPECT_THROW(Read(R"({"identity": {"name": ")" + std::string(257, 'a') + R"("}})"), configuration::Error);
    EXPECT_THROW(Read(R"({"identity": {"name": "a\nb"}})"), configuration::Error);
}

} // namespace
} // namespace zarn::host
