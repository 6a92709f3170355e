#include "support/eventually.h"
#include "support/host_process.h"
#include "support/machine.h"
#include "support/probe.h"
#include "support/probe_client.h"

#include <boost/system/system_error.hpp>
#include <gmock/gmock.h>
#include <sched.h>
#include <sys/mount.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace zarn::test {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

std::string ConfigureDiscovery(bool enabled, std::string const& location = "Hall", std::uint16_t webPort = 0) {
    return R"({"identity": {"location": ")" + location + R"("}, "settings": {"rtsp_port": 0, "web_port": )" +
           std::to_string(webPort) + R"(, "onvif": {"enabled": )" + (enabled ? "true" : "false") + "}}}";
}

/// Runs `ip` on a machine.
void Ip(Machine const& machine, std::string const& arguments) {
    ASSERT_TRUE(machine.Ip(arguments)) << "ip " << arguments;
}

/// Connects two machines by a virtual cable with a new device at either end.
void Connect(Machine const& left, std::string const& leftDevice, Machine const& right, std::string const& rightDevice) {
    Ip(left, "link add " + leftDevice + " type veth peer name " + rightDevice + " netns " + right.GetPath());
    Ip(left, "link set " + leftDevice + " up");
    Ip(right, "link set " + rightDevice + " up");
}

/// Replaces a file's content as seen by programs that this thread starts.
void ReplaceFile(std::string const& file, std::string const& content) {
    if (unshare(CLONE_NEWNS) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount(content.c_str(), file.c_str(), nullptr, MS_BIND, nullptr) != 0)
        throw std::system_error(errno, std::generic_category(), file);
}

/// The part of an answer between two texts.
std::string Between(std::string const& answer, std::string const& left, std::string const& right) {
    auto const found = answer.find(left);
    if (found == std::string::npos) return "";
    auto const begin = found + left.size();
    return answer.substr(begin, answer.find(right, begin) - begin);
}

std::string GetEndpointReference(std::string const& answer) {
    return "urn:uuid:" + Between(answer.substr(answer.find("EndpointReference")), "urn:uuid:", "<");
}

/// A network of two machines: the host's (10.9.0.1) and its clients' (10.9.0.2).
class DiscoveredHost : public testing::Test {
protected:
    void SetUp() override {
        if (!server.Exists()) GTEST_SKIP() << server.WhyNot();
        Ip(server, "link set lo up");
        Ip(client, "link set lo up");
        Connect(server, "lan", client, "lan");
        Ip(server, "address add 10.9.0.1/24 dev lan");
        Ip(client, "address add 10.9.0.2/24 dev lan");
    }

    void Start(bool enabled) {
        server.Run([&] {
            host = std::make_unique<HostProcess>(
                HostProcess::Options{.configuration = ConfigureDiscovery(enabled), .folder = folder});
        });
    }

    void Reload(std::string const& configuration) {
        folder->Write("config.json", configuration);
        host->GetProcess().Signal(SIGHUP);
    }

    /// The answer to a probe from the clients' machine; empty on timeout.
    std::string Discover(std::chrono::milliseconds limit = 200ms) {
        std::string answer;
        client.Run([&] {
            ProbeClient probe("10.9.0.2");
            probe.Send(MakeProbe("urn:uuid:1"));
            answer = probe.Receive(limit).value_or("");
        });
        return answer;
    }

    bool AwaitDiscovery(std::string const& part) {
        return Eventually([&] { return Discover().find(part) != std::string::npos; }, 40s);
    }

    /// True if the discovery port is free on the host's machine.
    bool IsPortFree() const {
        bool free = false;
        server.Run([&] {
            try {
                PortHolder const holder;
                free = true;
            } catch (boost::system::system_error const&) {
                // in use by the responder
            }
        });
        return free;
    }

    static std::string AddressAt(std::uint16_t port) {
        return "http://10.9.0.1:" + std::to_string(port) + "/onvif/device_service";
    }

    Machine server;
    Machine client;
    std::shared_ptr<TemporaryFolder> folder = std::make_shared<TemporaryFolder>();
    std::unique_ptr<HostProcess> host;
};

TEST_F(DiscoveredHost, ReportsItsXAddrToAnotherMachine) {
    Start(true);
    EXPECT_TRUE(AwaitDiscovery("<d:XAddrs>" + AddressAt(host->GetPort()) + "</d:XAddrs>")) << Discover();
    client.Run([&] {
        Process curl({"curl", "-s", "--data-binary",
                      R"(<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope"><s:Body>)"
                      R"(<GetSystemDateAndTime xmlns="http://www.onvif.org/ver10/device/wsdl"/></s:Body></s:Envelope>)",
                      "-H", "Content-Type: application/soap+xml", AddressAt(host->GetPort())});
        EXPECT_EQ(curl.Wait(), 0);
        EXPECT_THAT(curl.GetOutput(), HasSubstr("UTCDateTime"));
    });
}

TEST_F(DiscoveredHost, ReportsItsXAddrToItsOwnMachine) {
    Start(true);
    server.Run([&] {
        ProbeClient probe;
        std::string answer;
        EXPECT_TRUE(Eventually([&] {
            probe.Send(MakeProbe("urn:uuid:1"), "127.0.0.1");
            answer = probe.Receive(200ms).value_or("");
            return answer.find(AddressAt(host->GetPort())) != std::string::npos;
        })) << answer;
    });
}

TEST_F(DiscoveredHost, AppearsAndDisappearsWithItsSetting) {
    Start(false);
    EXPECT_EQ(Discover(), "");
    Reload(ConfigureDiscovery(true));
    EXPECT_TRUE(AwaitDiscovery("ProbeMatch"));
    server.Run([&] { EXPECT_TRUE(host->GetHealth().at("module").at("enabled").as_bool()); });
    Reload(ConfigureDiscovery(false));
    EXPECT_TRUE(Eventually([&] { return IsPortFree(); }));
    EXPECT_EQ(Discover(), "");
    server.Run([&] { EXPECT_FALSE(host->GetHealth().at("module").at("enabled").as_bool()); });
}

TEST_F(DiscoveredHost, IsFoundAgainAfterARestart) {
    Start(false);
    Reload(ConfigureDiscovery(true));
    EXPECT_TRUE(AwaitDiscovery("ProbeMatch"));
    EXPECT_EQ(host->Stop(), 0);
    EXPECT_EQ(Discover(), "");
    server.Run(
        [&] { host = std::make_unique<HostProcess>(HostProcess::Options{.configuration = "", .folder = folder}); });
    EXPECT_TRUE(AwaitDiscovery(AddressAt(host->GetPort())));
}

TEST_F(DiscoveredHost, KeepsItsEndpointReferenceOverRestarts) {
    auto const reference = [&] {
        std::string answer;
        EXPECT_TRUE(Eventually([&] { return !(answer = Discover()).empty(); }));
        return GetEndpointReference(answer);
    };
    Start(true);
    auto const first = reference();
    EXPECT_EQ(first.size(), std::string("urn:uuid:00000000-0000-0000-0000-000000000000").size()) << first;
    EXPECT_EQ(host->Stop(), 0);
    Start(true);
    EXPECT_EQ(reference(), first);
}

TEST_F(DiscoveredHost, ReportsTheNewWebPortAfterAMove) {
    Start(true);
    EXPECT_TRUE(AwaitDiscovery(AddressAt(host->GetPort())));
    Reload(ConfigureDiscovery(true, "Hall", 8123));
    EXPECT_TRUE(AwaitDiscovery(AddressAt(8123)));
}

TEST_F(DiscoveredHost, IsFoundAgainAfterItsNetworkReturns) {
    Start(true);
    EXPECT_TRUE(AwaitDiscovery("ProbeMatch"));
    Ip(server, "link delete lan");
    Connect(server, "lan", client, "lan");
    Ip(server, "address add 10.9.0.7/24 dev lan");
    Ip(client, "address add 10.9.0.2/24 dev lan");
    EXPECT_TRUE(AwaitDiscovery("http://10.9.0.7:"));
}

TEST_F(DiscoveredHost, IsListedByOnvifUtil) {
    Start(true);
    EXPECT_TRUE(AwaitDiscovery("ProbeMatch"));
    Ip(client, "route add default dev lan");
    client.Run([&] {
        std::string output;
        // onvif-util sends one probe and waits half a second, which is too short on a busy machine.
        EXPECT_TRUE(Eventually([&] {
            Process util({"onvif-util", "-a"});
            EXPECT_EQ(util.Wait(), 0);
            output = util.GetOutput();
            return output.find("Found 1 cameras") != std::string::npos;
        })) << output;
        EXPECT_THAT(output, HasSubstr("10.9.0.1"));
    });
}

// onvif-util can only log in with WS-Security, which the host does not accept.
TEST_F(DiscoveredHost, IsReadByOnvifUtilWhenNoLoginIsNeeded) {
    server.Run([&] {
        host = std::make_unique<HostProcess>(HostProcess::Options{
            .configuration = R"({"settings": {"rtsp_port": 0, "web_port": 0, "onvif": {"enabled": true},
                                "authentication": {"enabled": false}}, "channels": {
                "1": {"name": "Gate", "video": {"codec": "video/x-h264", "width": 1920, "height": 1080, "rate": "25/1"}},
                "2": {"name": "Yard", "video": {"codec": "video/x-h265", "width": 640, "height": 360, "rate": "10/1"}}}})",
            .folder = folder});
    });
    EXPECT_TRUE(AwaitDiscovery("ProbeMatch"));
    Ip(client, "route add default dev lan");
    client.Run([&] {
        Process util({"sh", "-c",
                      "printf 'get profiles\\nget profile 1\\nget rtsp\\nget video options\\nquit\\n' |"
                      " onvif-util -u admin -p any 10.9.0.1"});
        ASSERT_EQ(util.Wait(), 0);
        EXPECT_THAT(util.GetOutput(),
                    testing::AllOf(HasSubstr("Token 0: channels.1"), HasSubstr("Token 1: channels.2"),
                                   HasSubstr("Height:     360"), HasSubstr("/channels/2"), HasSubstr("640 x 360")));
    });
}

TEST_F(DiscoveredHost, AnswersOnlyForItselfOnASharedNetwork) {
    // Two hosts and a client on one switch; the client's machine acts as the switch.
    Machine const second;
    Ip(second, "link set lo up");
    Ip(client, "address delete 10.9.0.2/24 dev lan");
    Connect(second, "lan", client, "lan2");
    Ip(second, "address add 10.9.0.3/24 dev lan");
    if (!client.Ip("link add spare type bridge")) GTEST_SKIP() << "the kernel has no bridges (module bridge)";
    for (auto const* command :
         {"link add switch type bridge", "link set lan master switch", "link set lan2 master switch",
          "link set switch up", "address add 10.9.0.2/24 dev switch"})
        Ip(client, command);
    Start(true);
    std::unique_ptr<HostProcess> other;
    second.Run([&] {
        TemporaryFolder const identity;
        constexpr char MachineId[] = "/etc/machine-id"; // without it, hardware addresses identify a machine
        if (std::filesystem::exists(MachineId))
            ReplaceFile(MachineId, identity.Write("machine-id", "0123456789abcdef0123456789abcdef\n"));
        other = std::make_unique<HostProcess>(HostProcess::Options{.configuration = ConfigureDiscovery(true, "Yard")});
    });
    std::map<std::string, std::string> found; // endpoint reference by address
    client.Run([&] {
        ProbeClient probe("10.9.0.2");
        EXPECT_TRUE(Eventually([&] {
            probe.Send(MakeProbe("urn:uuid:1"));
            while (auto const answer = probe.Receive(200ms)) {
                for (auto const* address : {"http://10.9.0.1:", "http://10.9.0.3:"})
                    if (answer->find(address) != std::string::npos) found[address] = GetEndpointReference(*answer);
            }
            return found.size() == 2;
        }));
    });
    EXPECT_NE(found["http://10.9.0.1:"], found["http://10.9.0.3:"]);
}

TEST_F(DiscoveredHost, AnswersOnlyMatchingProbes) {
    constexpr char Strcmp[] = "MatchBy='http://schemas.xmlsoap.org/ws/2005/04/discovery/strcmp0'";
    std::vector<std::pair<std::string, Probe>> const asking{
        {"either type", ProbeForTypes("dn:NetworkVideoTransmitter tds:Device")},
        {"one of several types", ProbeForTypes("dn:Recorder\n\ttds:Device")},
        {"no type", {.body = "<d:Probe/>"}},
        {"other prefix",
         {.body = "<d:Probe><d:Types xmlns:x='http://www.onvif.org/ver10/network/wsdl'>x:NetworkVideoTransmitter"
                  "</d:Types></d:Probe>"}},
        {"scopes", ProbeForScopes("onvif://www.onvif.org/Profile/Streaming onvif://www.onvif.org/location/Hall")},
        {"exact scope", ProbeForScopes("onvif://www.onvif.org/type/video_encoder", Strcmp)},
        {"newer addressing", {.addressing = "http://www.w3.org/2005/08/addressing"}},
    };
    std::vector<std::string> const silent{
        ProbeForTypes("dn:NetworkVideoDisplay").ToString(),
        ProbeForScopes("onvif://www.onvif.org/Profile/G").ToString(),
        ProbeForScopes("onvif://www.onvif.org/type", Strcmp).ToString(),
        Probe{.discovery = "http://docs.oasis-open.org/ws-dd/ns/discovery/2009/01"}.ToString(),
        Probe{.action = "", .body = "<d:Hello/>"}.ToString(),
        "",
        std::string("\0\xff\r\n<", 5),
        std::string(1400, '<'),
        MakeProbe("urn:uuid:1").substr(0, 400),
    };
    Start(true);
    ASSERT_TRUE(AwaitDiscovery("ProbeMatch"));
    std::vector<std::string> expected;
    std::vector<std::string> answered;
    client.Run([&] {
        ProbeClient probe("10.9.0.2");
        for (std::size_t i = 0; i < silent.size(); ++i) {
            probe.Send(silent[i]);
            if (i >= asking.size()) continue;
            auto message = asking[i].second;
            message.id = "<a:MessageID>" + asking[i].first + "</a:MessageID>";
            probe.Send(message.ToString());
            expected.push_back(asking[i].first);
        }
        probe.Send(MakeProbe("the last"));
        expected.emplace_back("the last");
        while (answered.empty() || answered.back() != expected.back()) {
            auto const answer = probe.Receive();
            if (!answer) break;
            answered.push_back(Between(*answer, "RelatesTo>", "<"));
        }
    });
    EXPECT_EQ(answered, expected);
}

TEST_F(DiscoveredHost, AnswersRemoteNetworksOnlyWhenConfigured) {
    // The client's address is in none of the server's networks, although answers could reach it by the default route.
    Ip(client, "address add 10.10.0.2/24 dev lan");
    Ip(client, "route add 10.9.0.1/32 dev lan src 10.10.0.2");
    Ip(server, "route add default via 10.9.0.2 dev lan");
    Start(true);
    EXPECT_TRUE(AwaitDiscovery("ProbeMatch"));
    // The responder answers in order: after it has answered the near client, it has answered or ignored the far one.
    // When throttled, it answers neither.
    auto const discoverFromAfar = [&] {
        bool found = false;
        client.Run([&] {
            ProbeClient far("10.10.0.2");
            ProbeClient near("10.9.0.2");
            ASSERT_TRUE(Eventually([&] {
                far.Send(MakeProbe("urn:uuid:1"), "10.9.0.1");
                near.Send(MakeProbe("urn:uuid:2"));
                return near.Receive(500ms).has_value();
            }));
            found = far.Receive(1ms).has_value();
        });
        return found;
    };
    EXPECT_FALSE(discoverFromAfar());
    Reload(R"({"settings": {"rtsp_port": 0, "web_port": 0, "onvif": {"enabled": true, "discovery_anywhere": true}}})");
    EXPECT_TRUE(Eventually(discoverFromAfar));
    Reload(ConfigureDiscovery(true));
    EXPECT_TRUE(Eventually([&] { return !discoverFromAfar(); }));
}

TEST_F(DiscoveredHost, StartsOnceAnotherProgramFreesThePort) {
    std::optional<PortHolder> holder;
    server.Run([&] { holder.emplace(); });
    Start(true);
    EXPECT_TRUE(host->GetProcess().WaitForLog("Failed to start Onvif discovery service: "));
    EXPECT_EQ(Discover(), "");
    holder.reset();
    EXPECT_TRUE(AwaitDiscovery("ProbeMatch"));
}

} // namespace
} // namespace zarn::test
