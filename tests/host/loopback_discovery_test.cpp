// Discovery on a single machine, for environments that cannot create network namespaces.
#include "support/eventually.h"
#include "support/host_process.h"
#include "support/probe_client.h"

#include <boost/json/value.hpp>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <string>

namespace zarn::test {
namespace {

using namespace std::chrono_literals;

std::string ConfigureLoopback(bool enabled) {
    return std::string(R"({"settings": {"rtsp_port": 0, "web_port": 0, "onvif": {"enabled": )") +
           (enabled ? "true" : "false") + "}}}";
}

class LoopbackDiscovery : public testing::Test {
protected:
    void Start(bool enabled) {
        host = std::make_unique<HostProcess>(
            HostProcess::Options{.configuration = ConfigureLoopback(enabled), .folder = folder});
    }

    void Reload(bool enabled) {
        folder->Write("config.json", ConfigureLoopback(enabled));
        host->GetProcess().Signal(SIGHUP);
    }

    /// True if this host answers a probe sent to this machine; answers of other responders do not count.
    bool IsDiscovered() {
        ProbeClient probe;
        probe.Send(MakeProbe("urn:uuid:1"), "127.0.0.1");
        auto const answer = probe.Receive(200ms);
        return answer && answer->find(':' + std::to_string(host->GetPort()) + "/onvif/device_service") != answer->npos;
    }

    /// Waits for the expected state. The port may be in use by another program for a while; the responder retries.
    bool AwaitDiscovered(bool expected) {
        return Eventually([&] { return IsDiscovered() == expected; }, 60s);
    }

    /// Waits until the status document reports this state of the setting.
    bool AwaitEnabled(bool expected) {
        return Eventually([&] { return host->GetHealth().at("module").at("enabled") == expected; });
    }

    /// Without a multicast-capable device, the responder does not start.
    bool HasNoMulticast() { return host->GetProcess().WaitForLog("can multicast", 0s); }

    std::shared_ptr<TemporaryFolder> folder = std::make_shared<TemporaryFolder>();
    std::unique_ptr<HostProcess> host;
};

TEST_F(LoopbackDiscovery, FindsTheDeviceOnTheSameMachine) {
    Start(true);
    bool const found = AwaitDiscovered(true);
    if (HasNoMulticast()) GTEST_SKIP() << "no device of this machine can multicast";
    EXPECT_TRUE(found);
}

TEST_F(LoopbackDiscovery, AppearsAndDisappearsWithItsSetting) {
    Start(false);
    EXPECT_FALSE(IsDiscovered());
    Reload(true);
    EXPECT_TRUE(AwaitEnabled(true));
    bool const found = AwaitDiscovered(true);
    bool const hasNoMulticast = HasNoMulticast();
    Reload(false);
    EXPECT_TRUE(AwaitEnabled(false));
    if (hasNoMulticast) GTEST_SKIP() << "no device of this machine can multicast";
    EXPECT_TRUE(found);
    EXPECT_TRUE(AwaitDiscovered(false));
}

} // namespace
} // namespace zarn::test
