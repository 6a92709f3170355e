#include "device_fixture.h"
#include "support/probe_client.h"

#include <zarn/configuration/error.h>
#include <zarn/configuration/node/primitive.h>
#include <zarn/configuration/schema.h>
#include <zarn/logging/capture.h>
#include <zarn/object/bad_cast.h>

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <fstream>
#include <future>
#include <optional>
#include <pugixml.hpp>
#include <sstream>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace zarn::test {
namespace {

using namespace std::chrono_literals;
using configuration::node::Primitive;
using testing::HasSubstr;
using testing::SizeIs;

constexpr char Path[] = "settings.onvif.enabled";
constexpr char Starting[] = "Starting ONVIF discovery service";
constexpr char Stopping[] = "Stopping ONVIF discovery service";

/// Counts the manager's log lines with this text, at the level used for starts and stops.
long Count(logging::Capture const& log, std::string const& text) {
    auto const lines = log.GetLines();
    return std::ranges::count_if(lines, [&](logging::Line const& line) {
        return line.name == "zarn.service.onvif.manager" && static_cast<int>(line.level) == 4 && line.text == text;
    });
}

class EnabledSetting : public DeviceFixture {
protected:
    Primitive<bool>& Setting() { return root->Find(Path)->As<Primitive<bool>>(); }

    /// Loads the host's configuration file before the setting is described.
    void Read(std::string const& enabled) {
        root->FromJson(boost::json::parse(R"({"settings": {"onvif": {"enabled": )" + enabled + "}}}"),
                       configuration::Unknown::Keep);
    }

    service::onvif::Manager MakeManager() { return {&engine, root, channelInfo, identity}; }
};

TEST_F(EnabledSetting, IsFalseInAFreshConfiguration) {
    Manager();
    EXPECT_FALSE(Setting().Get());
}

TEST_F(EnabledSetting, LeavesTheDeviceSilentInAFreshConfiguration) {
    OnOwnNetwork([&] {
        Manager();
        EXPECT_NO_THROW(PortHolder()) << "the discovery port is in use";
    });
}

TEST_F(EnabledSetting, HasASchema) {
    Manager();
    EXPECT_EQ(root->Find(Path)->GetSchema(),
              boost::json::parse(R"({"type": "boolean", "default": false, "readOnly": false, "writeOnly": false,
                                    "description": "The boolean denoting whether ONVIF is enabled for Zarnsuite"})"));
}

TEST_F(EnabledSetting, MakesTheDeviceAppearAndDisappear) {
    OnOwnNetwork([&] {
        Manager();
        ProbeClient client;
        Setting().Set(true);
        EXPECT_TRUE(client.FindsAnybody());
        Setting().Set(false);
        EXPECT_NO_THROW(PortHolder());
        Setting().Set(true);
        EXPECT_TRUE(client.FindsAnybody());
    });
}

TEST_F(EnabledSetting, AppliesFromTheStart) {
    OnOwnNetwork([&] {
        Read("true");
        logging::Capture const log;
        Manager();
        EXPECT_EQ(Count(log, Starting), 1);
        EXPECT_TRUE(ProbeClient().FindsAnybody());
    });
}

TEST_F(EnabledSetting, StartsOneResponderWhenItIsSetTwice) {
    OnOwnNetwork([&] {
        Manager();
        logging::Capture const log;
        Setting().Set(true);
        Setting().Set(true);
        EXPECT_EQ(Count(log, Starting), 1);
        EXPECT_FALSE(log.Contains("Failed to start"));
    });
}

TEST_F(EnabledSetting, LogsEachTimeThatItIsSetToFalse) {
    Manager();
    Setting().Set(true); // succeeds even when the port is in use
    logging::Capture const log;
    Setting().Set(false);
    Setting().Set(false);
    EXPECT_EQ(Count(log, Stopping), 2);
}

TEST_F(EnabledSetting, LogsOnceWhenInitiallyFalse) {
    Read("false");
    logging::Capture const log;
    Manager();
    EXPECT_EQ(Count(log, Stopping), 1);
    EXPECT_EQ(Count(log, Starting), 0);
}

#ifndef ZARN_SANITIZED // which need the address space that is taken away here
/// During its lifetime, no thread can start: there is no address space for another stack, and the stacks of finished
/// threads are not available for reuse.
class NoThreads {
public:
    NoThreads() {
        getrlimit(RLIMIT_AS, &before);
        threads.reserve(MaximumThreads);
        constexpr std::size_t Rest = 256 * 1024; // enough for small allocations but not for a stack
        rlimit const full{GetAddressSpace() + Rest, before.rlim_max};
        setrlimit(RLIMIT_AS, &full);
        try {
            while (threads.size() < MaximumThreads) threads.emplace_back([this] { opened.wait(); });
        } catch (std::system_error const&) {
            return;
        }
        ADD_FAILURE() << "threads can still be started";
    }

    ~NoThreads() {
        setrlimit(RLIMIT_AS, &before);
        gate.set_value();
    }

    NoThreads(NoThreads const&) = delete;
    NoThreads& operator=(NoThreads const&) = delete;

private:
    static constexpr std::size_t MaximumThreads = 1000;

    static std::size_t GetAddressSpace() {
        std::size_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    }

    rlimit before{};
    std::promise<void> gate;
    std::shared_future<void> opened = gate.get_future().share();
    std::vector<std::jthread> threads;
};

TEST_F(EnabledSetting, RetriesWhenSetAgainAfterAFailedThreadStart) {
    OnOwnNetwork([&] {
        Manager();
        logging::Capture const log;
        {
            NoThreads const none;
            EXPECT_THROW(Setting().Set(true), std::system_error);
        }
        EXPECT_TRUE(Setting().Get());
        EXPECT_NO_THROW(PortHolder()) << "the discovery port is in use";
        Setting().Set(true);
        EXPECT_TRUE(ProbeClient().FindsAnybody());
        EXPECT_EQ(Count(log, Starting), 2);
    });
}
#endif

TEST_F(EnabledSetting, DoesNotAffectRequests) {
    EXPECT_EQ(Ask("<trt:GetProfiles/>").status, 200);
    Setting().Set(true); // succeeds even when the port is in use
    EXPECT_EQ(Ask("<trt:GetProfiles/>").status, 200);
}

TEST_F(EnabledSetting, MustBeABoolean) {
    root->Schema({configuration::Schema(Path, "yes", "a text")});
    try {
        Manager();
        FAIL() << "a text was accepted";
    } catch (object::BadCast const& error) {
        EXPECT_EQ(error.GetTypeName(), "zarn.configuration.node.Bool");
    }
}

TEST_F(EnabledSetting, MustBeABooleanInTheFile) {
    Read("\"maybe\"");
    EXPECT_THROW(Manager(), configuration::Error);
}

TEST_F(EnabledSetting, KeepsTheResponderWhenAValueOfAnotherTypeComes) {
    OnOwnNetwork([&] {
        Manager();
        Setting().Set(true);
        logging::Capture const log;
        EXPECT_THROW(Read("\"maybe\""), configuration::Error);
        EXPECT_EQ(Count(log, Stopping), 0);
        EXPECT_TRUE(ProbeClient().FindsAnybody());
    });
}

TEST_F(EnabledSetting, LogsTheStopWhenTheManagerGoesWithoutAResponder) {
    Manager();
    logging::Capture const log;
    EndManager();
    EXPECT_EQ(Count(log, Stopping), 1);
}

TEST_F(EnabledSetting, EndsWithTheManager) {
    OnOwnNetwork([&] {
        Read("true");
        logging::Capture const log;
        {
            auto const device = MakeManager();
            EXPECT_EQ(Count(log, Stopping), 0);
        }
        EXPECT_EQ(Count(log, Stopping), 1);
        EXPECT_NO_THROW(PortHolder());
        Setting().Set(true);
        EXPECT_EQ(Count(log, Starting), 1) << "the setting still has a subscriber";
    });
}

TEST_F(EnabledSetting, MayChangeDuringUpdatesOfThePort) {
    OnOwnNetwork([&] {
        auto& device = Manager();
        std::atomic<bool> over = false;
        std::thread host([&] {
            for (std::uint16_t port = 1; !over; ++port) {
                device.UpdateServerPort(port);
                device.UpdateSSLState(port % 2 == 0);
            }
        });
        std::thread other([&] {
            while (!over) Setting().Set(true);
        });
        for (int i = 0; i < 100; ++i) Setting().Set(i % 2 == 0);
        over = true;
        host.join();
        other.join();
        Setting().Set(true);
        device.UpdateServerPort(4711);
        device.UpdateSSLState(true);
        auto const answer = ProbeClient().Ask(MakeProbe("urn:uuid:1"));
        ASSERT_TRUE(answer);
        EXPECT_THAT(*answer, HasSubstr("https://127.0.0.1:4711/onvif/device_service"));
    });
}

TEST_F(EnabledSetting, LosesNoUpdateFromTheHostWhileStarting) {
    OnOwnNetwork([&] {
        auto& device = Manager();
        for (unsigned i = 1; i <= 100; ++i) {
            auto const port = static_cast<std::uint16_t>(i);
            std::thread starter([&] { Setting().Set(true); });
            std::thread host([&] {
                // The delay varies over the whole duration of a start.
                std::this_thread::sleep_for(std::chrono::microseconds(i * 5));
                device.UpdateServerPort(port);
                device.UpdateSSLState(port % 2 == 0);
            });
            starter.join();
            host.join();
            // A separate address per client, because the responder throttles each address.
            ProbeClient client("127.0.0." + std::to_string(i));
            client.Send(MakeProbe("urn:uuid:1"), "127.0.0.1");
            EXPECT_THAT(client.Receive().value_or(""),
                        HasSubstr((port % 2 == 0 ? "https" : "http") + ("://127.0.0.1:" + std::to_string(port)) + "/"));
            Setting().Set(false);
        }
    });
}

TEST_F(EnabledSetting, MayChangeDuringAFloodOfProbes) {
#ifdef ZARN_SANITIZED // each start is many times slower
    constexpr int Changes = 50;
#else
    constexpr int Changes = 200;
#endif
    OnOwnNetwork([&] {
        Manager();
        logging::Capture const log;
        Flood const flood;
        int changed = 0;
        auto const deadline = std::chrono::steady_clock::now() + 60s;
        for (; (changed < Changes || flood.CountAnswers() == 0) && std::chrono::steady_clock::now() < deadline;
             ++changed) {
            Setting().Set(true);
            if (changed % 2 == 0) std::this_thread::yield();
            Setting().Set(false);
        }
        EXPECT_GE(changed, Changes);
        EXPECT_GT(flood.CountAnswers(), 0) << "no probe of the flood was answered";
        EXPECT_EQ(Count(log, Starting), changed);
        EXPECT_EQ(Count(log, Stopping), changed);
        EXPECT_FALSE(log.Contains("Failed to start"));
        EXPECT_NO_THROW(PortHolder());
    });
}

TEST_F(EnabledSetting, MayChangeDuringDestructionOfTheManager) {
    constexpr int Managers = 50;
    OnOwnNetwork([&] {
        { auto const device = MakeManager(); } // registers the setting's schema
        std::atomic<unsigned> changes = 0;
        std::jthread const other([&](std::stop_token const& over) {
            for (; !over.stop_requested(); ++changes) Setting().Set(changes % 2 == 0);
        });
        auto const awaitChanges = [&] {
            for (unsigned const before = changes; changes < before + 2;) std::this_thread::yield();
        };
        for (int i = 0; i < Managers; ++i) {
            std::optional<service::onvif::Manager> device;
            device.emplace(&engine, root, channelInfo, identity);
            awaitChanges();
            device.reset();
            awaitChanges();
            EXPECT_NO_THROW(PortHolder()) << "the discovery port is still in use";
        }
    });
}

/// What discovery answers say about the host.
class DiscoveredDevice : public EnabledSetting {
protected:
    static std::string Discover() { return ProbeClient().Ask(MakeProbe("urn:uuid:1")).value_or(""); }
};

/// Decodes percent-encoding.
std::string Decode(std::string const& text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        bool const escaped = text[i] == '%';
        decoded += escaped ? static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16)) : text[i];
        if (escaped) i += 2;
    }
    return decoded;
}

TEST_F(DiscoveredDevice, IsSilentUntilTheHostSetsItsPort) {
    OnOwnNetwork([&] {
        Read("true");
        auto device = MakeManager();
        logging::Capture const log;
        ProbeClient client;
        client.Send(MakeProbe("urn:uuid:1"));
        EXPECT_TRUE(log.WaitFor("Failed to generate discovery response for request: ", 60s)); // and no answer is sent
        device.UpdateServerPort(8081);
        auto const answer = client.Ask(MakeProbe("urn:uuid:2")).value_or("");
        EXPECT_THAT(answer, HasSubstr("urn:uuid:2")) << "the first probe was answered";
        EXPECT_THAT(answer, HasSubstr("http://127.0.0.1:8081/onvif/device_service"));
    });
}

TEST_F(DiscoveredDevice, ReportsPortAndTlsStateSetBeforeItStarted) {
    OnOwnNetwork([&] {
        Manager().UpdateServerPort(8443);
        Manager().UpdateSSLState(true);
        Setting().Set(true);
        EXPECT_THAT(Discover(), HasSubstr("https://127.0.0.1:8443/onvif/device_service"));
    });
}

TEST_F(DiscoveredDevice, ReportsTheLatestPortAndTlsState) {
    OnOwnNetwork([&] {
        Manager();
        Setting().Set(true);
        EXPECT_THAT(Discover(), HasSubstr("http://127.0.0.1:8080/onvif/device_service"));
        Manager().UpdateServerPort(8443);
        Manager().UpdateSSLState(true);
        EXPECT_THAT(Discover(), HasSubstr("https://127.0.0.1:8443/onvif/device_service"));
    });
}

TEST_F(DiscoveredDevice, ReportsItsIdentity) {
    OnOwnNetwork([&] {
        Manager();
        Setting().Set(true);
        EXPECT_THAT(Discover(), HasSubstr("onvif://www.onvif.org/location/Hall%203"));
    });
}

TEST_F(DiscoveredDevice, HasTheScopesOfGetScopes) {
    OnOwnNetwork([&] {
        Manager();
        Setting().Set(true);
        pugi::xml_document answer;
        ASSERT_TRUE(answer.load_string(Discover().c_str()));
        std::istringstream scopes(answer.select_node("//d:Scopes").node().child_value());
        std::vector<std::string> decoded;
        for (std::string each; scopes >> each;) decoded.push_back(Decode(each));
        EXPECT_THAT(decoded, SizeIs(8));
        EXPECT_EQ(decoded, Ask("<tds:GetScopes/>").Texts("//tds:Scopes/tt:ScopeItem"));
    });
}

} // namespace
} // namespace zarn::test
