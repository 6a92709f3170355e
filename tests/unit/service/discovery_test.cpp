#include "support/probe_client.h"

#include <service/onvif/discovery.h>
#include <zarn/logging/capture.h>
#include <zarn/network/local.h>
#include <zarn/onvif/discovery/request.h>
#include <zarn/onvif/discovery/response.h>

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace zarn::service::onvif {
namespace {

using namespace std::chrono_literals;
using test::Flood;
using test::MakeProbe;
using test::OnOwnNetwork;
using test::ProbeClient;
using testing::AllOf;
using testing::HasSubstr;
using zarn::onvif::discovery::Request;

utilities::name::Config Identity() {
    return utilities::name::Config({"Maker", "Model", "1.0", "rack", "Cellar", "Door camera"});
}

/// The answer that the responder would send, produced without a network.
zarn::onvif::discovery::Response Ask(Discovery& discovery) {
    return discovery.HandleReceive(Request(MakeProbe("urn:uuid:1")));
}

std::string Address() { return network::GetLocalIPAddress().to_string(); }

TEST(Discovery, HasNoValidResponseUntilThePortIsSet) {
    Discovery discovery(Identity(), 0, false);
    EXPECT_FALSE(Ask(discovery).IsValid());
    discovery.SetPort(0);
    EXPECT_TRUE(Ask(discovery).IsValid());
}

TEST(Discovery, SendsNoResponseUntilThePortIsSet) {
    OnOwnNetwork([] {
        Discovery discovery(Identity(), 0, false);
        logging::Capture const log;
        ProbeClient client;
        client.Send(MakeProbe("urn:uuid:1"));
        EXPECT_TRUE(log.WaitFor("Failed to generate discovery response for request: ", 60s)); // and no answer is sent
        discovery.SetPort(0);
        auto const answer = client.Ask(MakeProbe("urn:uuid:2"));
        ASSERT_TRUE(answer);
        EXPECT_THAT(*answer, HasSubstr("urn:uuid:2")) << "the first probe was answered";
        EXPECT_THAT(*answer, HasSubstr("http://" + Address() + ":0/onvif/device_service"));
    });
}

TEST(Discovery, TellsPortZeroWhenItIsToldThatAfterAnother) {
    Discovery discovery(Identity(), 8080, false);
    discovery.SetPort(0);
    EXPECT_THAT(Ask(discovery).GetXML(), HasSubstr("http://" + Address() + ":0/onvif/device_service"));
}

TEST(Discovery, AnswersAtOnceWithAnInitialPort) {
    OnOwnNetwork([] {
        Discovery const discovery(Identity(), 8080, false);
        auto const answer = ProbeClient().Ask(MakeProbe("urn:uuid:1"));
        ASSERT_TRUE(answer);
        EXPECT_THAT(*answer, AllOf(HasSubstr("urn:uuid:1"), HasSubstr("onvif://www.onvif.org/location/Cellar"),
                                   HasSubstr("http://" + Address() + ":8080/onvif/device_service")));
    });
}

TEST(Discovery, ReportsTheLatestPortAndTlsState) {
    Discovery discovery(Identity(), 8443, true);
    EXPECT_THAT(Ask(discovery).GetXML(), HasSubstr("https://" + Address() + ":8443/onvif/device_service"));
    discovery.SetPort(80);
    discovery.SetSSlEnabled(false);
    EXPECT_THAT(Ask(discovery).GetXML(), HasSubstr("http://" + Address() + ":80/onvif/device_service"));
}

TEST(Discovery, AddressesTheResponseToReplyTo) {
    OnOwnNetwork([] {
        Discovery const discovery(Identity(), 8080, false);
        auto probe = MakeProbe("urn:uuid:1");
        probe.insert(probe.find("<w:To>"), "<w:ReplyTo><w:Address>urn:uuid:client</w:Address></w:ReplyTo>");
        EXPECT_THAT(ProbeClient().Ask(probe).value_or(""), HasSubstr("To>urn:uuid:client</wsa:To>"));
    });
}

TEST(Discovery, MayBeUpdatedWhileAnswering) {
    OnOwnNetwork([] {
        Discovery discovery(Identity(), 1, false);
        std::atomic<bool> over = false;
        std::thread host([&] {
            for (std::uint16_t port = 1; !over; ++port) {
                discovery.SetPort(port);
                discovery.SetSSlEnabled(port % 2 == 0);
            }
        });
        ProbeClient client;
        for (int i = 0; i < 5; ++i) EXPECT_TRUE(client.Ask(MakeProbe("urn:uuid:1")));
        over = true;
        host.join();
    });
}

TEST(Discovery, BeginsAndEndsInAFloodOfProbes) {
    OnOwnNetwork([] {
        Flood const flood;
        int begun = 0;
        auto const deadline = std::chrono::steady_clock::now() + 100s;
        for (;
             (begun < test::StartsAndStops || flood.CountAnswers() == 0) && std::chrono::steady_clock::now() < deadline;
             ++begun) {
            Discovery discovery(Identity(), 8080, false);
            if (begun % 2 == 0) std::this_thread::yield();
            discovery.SetPort(8081);
        }
        EXPECT_GE(begun, test::StartsAndStops);
        EXPECT_GT(flood.CountAnswers(), 0) << "no probe of the flood was answered";
    });
}

} // namespace
} // namespace zarn::service::onvif
