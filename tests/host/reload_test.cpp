#include "support/eventually.h"
#include "support/host_process.h"
#include "support/raw_connection.h"
#include "support/reserved_port.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/json/array.hpp>
#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <memory>
#include <string>
#include <vector>

namespace zarn::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class Reload : public testing::Test {
protected:
    static std::string Configure(std::string const& channels, std::string const& settings = {}) {
        return R"({"settings": {"web_port": 0, "rtsp_port": 0)" + settings + R"(}, "channels": {)" + channels + "}}";
    }

    void Write(std::string const& text) {
        host.GetFolder().Write("config.json", text);
        host.GetProcess().Signal(SIGHUP);
    }

    std::vector<std::string> GetChannels() const {
        auto const health = host.GetHealth();
        std::vector<std::string> ids;
        for (auto const& channel : health.at("channels").as_array()) ids.emplace_back(channel.at("id").as_string());
        return ids;
    }

    std::size_t CountLogLines(std::string const& part) const {
        auto const log = host.GetProcess().GetLog();
        std::size_t count = 0;
        for (auto at = log.find(part); at != std::string::npos; at = log.find(part, at + 1)) ++count;
        return count;
    }

    HostProcess host{{.arguments = {"--set", "settings.authentication.enabled=false"}}};
};

TEST_F(Reload, AddsRemovesAndReordersChannels) {
    ASSERT_THAT(GetChannels(), ElementsAre("1", "2"));
    Write(Configure(R"("3": {"name": "C"}, "2": {"name": "B"})"));
    EXPECT_TRUE(Eventually([&] { return GetChannels() == std::vector<std::string>{"3", "2"}; }));
    RawConnection connection(host.GetPort());
    EXPECT_EQ(connection.Exchange("GET /snapshot/1/latest.jpeg HTTP/1.1\r\nHost: h\r\n\r\n").status, 404U);
    EXPECT_EQ(connection.Exchange("GET /snapshot/3/latest.jpeg HTTP/1.1\r\nHost: h\r\n\r\n").status, 503U);
}

TEST_F(Reload, ChangesAChannel) {
    Write(Configure(R"("1": {"name": "A", "video": {"width": 320}})"));
    EXPECT_TRUE(Eventually([&] { return host.GetHealth().at("channels").at(0).at("width") == 320; }));
}

TEST_F(Reload, CallsAChannelByItsIdUntilItHasAName) {
    auto const tells = [&](std::string const& name) {
        constexpr auto* Operation = R"(m:GetVideoSourceConfigurations xmlns:m="http://www.onvif.org/ver10/media/wsdl")";
        auto const reply = RawConnection(host.GetPort()).Exchange(MakeSoapRequest(Operation));
        return reply.body.find("<tt:Name>" + name + "</tt:Name>") != std::string::npos;
    };
    Write(Configure(R"("7": {"video": {"width": 8}})"));
    EXPECT_TRUE(Eventually([&] { return tells("7"); }));
    Write(Configure(R"("7": {"video": {"width": 8}, "name": "Gate"})"));
    EXPECT_TRUE(Eventually([&] { return tells("Gate"); }));
}

TEST_F(Reload, ChangesLimits) {
    Write(Configure("", R"(, "limits": {"body_bytes": 1024})"));
    std::string const request =
        "POST /onvif/a HTTP/1.1\r\nHost: h\r\nContent-Length: 1025\r\n\r\n" + std::string(1025, ' ');
    EXPECT_TRUE(Eventually([&] { return RawConnection(host.GetPort()).Exchange(request).status == 413; }));
}

TEST_F(Reload, SwitchesAuthentication) {
    HostProcess switched;
    auto const status = [&] {
        return RawConnection(switched.GetPort()).Exchange(MakeSoapRequest("GetDeviceInformation")).status;
    };
    EXPECT_EQ(status(), 401U);
    switched.GetFolder().Write("config.json", Configure("", R"(, "authentication": {"enabled": false})"));
    switched.GetProcess().Signal(SIGHUP);
    EXPECT_TRUE(Eventually([&] { return status() == 200; }));
    switched.GetFolder().Write("config.json", Configure(""));
    switched.GetProcess().Signal(SIGHUP);
    EXPECT_TRUE(Eventually([&] { return status() == 401; }));
}

TEST_F(Reload, KeepsTheDiscoverySettingAcrossARestart) {
    auto const folder = std::make_shared<TemporaryFolder>();
    auto const isEnabled = [](HostProcess const& each) {
        return each.GetHealth().at("module").at("enabled").as_bool();
    };
    {
        HostProcess first{{.folder = folder}};
        EXPECT_FALSE(isEnabled(first));
        folder->Write("config.json", Configure("", R"(, "onvif": {"enabled": true})"));
        first.GetProcess().Signal(SIGHUP);
        EXPECT_TRUE(Eventually([&] { return isEnabled(first); }));
        EXPECT_EQ(first.Stop(), 0);
    }
    HostProcess const second{{.configuration = "", .folder = folder}};
    EXPECT_TRUE(isEnabled(second));
}

TEST_F(Reload, KeepsTheRunningConfigurationWhenTheFileIsBroken) {
    for (std::string const text :
         {"{ no JSON", R"({"channels": {"1": {"source": "test:none-such"}}})", R"({"channel": {}})"}) {
        auto const before = CountLogLines("Keeping the previous configuration");
        Write(text);
        EXPECT_TRUE(Eventually([&] { return CountLogLines("Keeping the previous configuration") == before + 1; }));
    }
    EXPECT_THAT(host.GetProcess().GetLog(), HasSubstr("config.json: channels.1.source: "));
    EXPECT_THAT(GetChannels(), ElementsAre("1", "2"));
}

TEST_F(Reload, KeepsTheRunningConfigurationWhenTheFileIsMissing) {
    std::filesystem::remove(host.GetFolder() / "config.json");
    host.GetProcess().Signal(SIGHUP);
    EXPECT_TRUE(host.GetProcess().WaitForLog("Keeping the previous configuration"));
    EXPECT_THAT(GetChannels(), ElementsAre("1", "2"));
}

TEST_F(Reload, KeepsPortsAndOverridesOfThisRun) {
    auto const rtspPort = host.GetRtspPort();
    Write(Configure("", R"(, "authentication": {"enabled": true})"));
    ASSERT_TRUE(host.GetProcess().WaitForLog("again"));
    EXPECT_TRUE(Eventually([&] { return GetChannels().empty(); }));
    EXPECT_EQ(host.GetRtspPort(), rtspPort);
    RawConnection connection(host.GetPort());
    EXPECT_EQ(connection.Exchange(MakeSoapRequest("GetDeviceInformation")).status, 200U);
    EXPECT_THAT(connection.Exchange(MakeSoapRequest("GetCapabilities")).body,
                HasSubstr(":" + std::to_string(host.GetPort()) + "/onvif"));
}

TEST_F(Reload, LogsSettingsThatNeedARestart) {
    Write(R"({"identity": {"name": "other"}, "settings": {"web_port": 0, "rtsp_port": 2}})");
    for (auto const* path : {"identity", "settings.rtsp_port"}) {
        EXPECT_TRUE(host.GetProcess().WaitForLog(std::string(path) + " changes at the next start"));
    }
}

std::string WebPort(std::uint16_t port) {
    return R"({"settings": {"rtsp_port": 0, "web_port": )" + std::to_string(port) + "}}";
}

/// The status of a request to a port; 0 when the connection is refused.
unsigned Ask(std::uint16_t port) {
    try {
        return RawConnection(port).Exchange(MakeSoapRequest("GetDeviceInformation")).status;
    } catch (std::exception const&) {
        return 0;
    }
}

TEST_F(Reload, MovesTheWebServer) {
    ReservedPort const next;
    auto const port = next.Get();
    Write(WebPort(port));
    EXPECT_TRUE(Eventually([&] { return Ask(port) == 200; })) << host.GetProcess().GetLog();
    EXPECT_TRUE(Eventually([&] { return Ask(host.GetPort()) == 0; }));
    EXPECT_THAT(RawConnection(port).Exchange(MakeSoapRequest("GetCapabilities")).body,
                HasSubstr(":" + std::to_string(port) + "/onvif/device_service"));
    EXPECT_THAT(RawConnection(port).Exchange("GET /api/health HTTP/1.1\r\nHost: h\r\n\r\n").body,
                HasSubstr("\"web\":{\"port\":" + std::to_string(port)));
}

TEST_F(Reload, KeepsASystemChosenPortWhenTheFileNamesIt) {
    auto const port = host.GetPort();
    Write(WebPort(port));
    ASSERT_TRUE(host.GetProcess().WaitForLog("again"));
    host.GetProcess().Signal(SIGHUP);
    EXPECT_TRUE(Eventually([&] { return CountLogLines("again") == 2; }));
    EXPECT_EQ(Ask(port), 200U);
    Write(WebPort(0));
    EXPECT_TRUE(host.GetProcess().WaitForLog("The web server has moved to port "));
    EXPECT_EQ(CountLogLines("Keeping the previous web port"), 0U) << host.GetProcess().GetLog();
}

TEST_F(Reload, KeepsTheOldPortUntilTheNewOneIsFree) {
    ReservedPort const reserved;
    auto const port = reserved.Get();
    boost::asio::io_context io;
    boost::asio::ip::tcp::acceptor taken(io, {boost::asio::ip::tcp::v4(), port});
    Write(WebPort(port));
    EXPECT_TRUE(host.GetProcess().WaitForLog("Keeping the previous web port: web port " + std::to_string(port) +
                                             " cannot be bound: Address already in use"));
    EXPECT_EQ(Ask(host.GetPort()), 200U);
    taken.close();
    host.GetProcess().Signal(SIGHUP);
    EXPECT_TRUE(Eventually([&] { return Ask(port) == 200; }));
}

TEST_F(Reload, KeepsAWebPortSetOnTheCommandLine) {
    HostProcess fixed{
        {.arguments = {"--set", "settings.web_port=0", "--set", "settings.authentication.enabled=false"}}};
    ReservedPort const next;
    auto const port = next.Get();
    fixed.GetFolder().Write("config.json", R"({"settings": {"web_port": )" + std::to_string(port) +
                                               R"(, "rtsp_port": 0}, "channels": {"7": {"name": "G"}}})");
    fixed.GetProcess().Signal(SIGHUP);
    EXPECT_TRUE(Eventually([&] { return fixed.GetHealth().at("channels").at(0).at("id") == "7"; }));
    EXPECT_EQ(Ask(fixed.GetPort()), 200U);
    EXPECT_EQ(Ask(port), 0U);
}

TEST_F(Reload, DoesNotRewriteTheFile) {
    auto const text = Configure(R"("9": {"name": "I"})");
    Write(text);
    EXPECT_TRUE(Eventually([&] { return GetChannels() == std::vector<std::string>{"9"}; }));
    EXPECT_EQ(host.Stop(), 0);
    EXPECT_EQ(host.GetFolder().Read("config.json"), text);
}

TEST_F(Reload, DoesNotInterruptService) {
    for (int i = 0; i < 20; ++i) {
        Write(Configure(R"("1": {"name": "N)" + std::to_string(i) + "\"}"));
        EXPECT_EQ(RawConnection(host.GetPort()).Exchange(MakeSoapRequest("GetDeviceInformation")).status, 200U);
    }
    EXPECT_EQ(host.Stop(), 0);
}

} // namespace
} // namespace zarn::test
