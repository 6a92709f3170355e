#include "failing_aligned_alloc.h"
#include "support/eventually.h"
#include "support/failing_socket.h"
#include "support/no_descriptors.h"
#include "support/peer.h"
#include "support/probe_client.h"

#include <service/onvif/discovery_base.h>
#include <zarn/logging/capture.h>
#include <zarn/onvif/discovery/request.h>
#include <zarn/onvif/discovery/response.h>

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <vector>

namespace zarn::service::onvif {
namespace {

using namespace std::chrono_literals;
using test::FailingSocket;
using test::Flood;
using test::MakeProbe;
using test::NoDescriptors;
using test::OnOwnNetwork;
using test::Peer;
using test::PortHolder;
using test::ProbeClient;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using zarn::onvif::discovery::Request;
using zarn::onvif::discovery::Response;

/// Answers and counts every message that parses.
class Responder : public DiscoveryBase {
public:
    explicit Responder(std::chrono::milliseconds retryInterval = RetryInterval, std::string location = "Vienna")
        : DiscoveryBase(retryInterval), location(std::move(location)) {
        Begin();
    }

    ~Responder() override { End(); }

    Responder(Responder const&) = delete;
    Responder& operator=(Responder const&) = delete;

    Response HandleReceive(Request const& request) override {
        ++asked;
        return {request.GetMessageId(), request.GetAddress(), 8080, false,
                utilities::name::Config({"Maker", "Model", "1.0", "rack", location, "Door"})};
    }

    std::atomic<int> asked = 0;

private:
    std::string const location;
};

constexpr char Failed[] = "16 Failed to start Onvif discovery service: Failed to receive at UDP port 3702 for group "
                          "239.255.255.250: ";
std::string const FailedAsThePortIsHeld = Failed + std::string("Address already in use");

/// The responder's log lines as "level text".
std::vector<std::string> LinesOf(logging::Capture const& log) {
    std::vector<std::string> lines;
    for (auto const& line : log.GetLines()) {
        if (line.name == "zarn.service.onvif.DiscoveryBase")
            lines.push_back(std::to_string(static_cast<int>(line.level)) + ' ' + line.text);
    }
    return lines;
}

/// Waits until the responder has written `count` lines.
bool AwaitLines(logging::Capture const& log, std::size_t count) {
    return test::Eventually([&] { return LinesOf(log).size() >= count; });
}

TEST(DiscoveryBase, AnswersAMulticastProbeAtItsSource) {
    OnOwnNetwork([] {
        Responder const responder;
        auto const answer = ProbeClient().Ask(MakeProbe("urn:uuid:1"));
        ASSERT_TRUE(answer);
        EXPECT_THAT(*answer, HasSubstr("ProbeMatches"));
        EXPECT_THAT(*answer, HasSubstr("urn:uuid:1"));
    });
}

TEST(DiscoveryBase, AnswersAProbeSentToItsOwnAddress) {
    OnOwnNetwork([] {
        Responder const responder;
        ProbeClient client;
        client.Send(MakeProbe("urn:uuid:1"), "127.0.0.1");
        EXPECT_TRUE(client.Receive());
    });
}

TEST(DiscoveryBase, AnswersSeveralProbes) {
    OnOwnNetwork([] {
        Responder const responder;
        ProbeClient client;
        for (auto const* id : {"urn:uuid:1", "urn:uuid:2", "urn:uuid:3"}) {
            auto const answer = client.Ask(MakeProbe(id));
            ASSERT_TRUE(answer);
            EXPECT_THAT(*answer, HasSubstr(id));
        }
    });
}

TEST(DiscoveryBase, AnswersFromAPortOfItsOwn) {
    OnOwnNetwork([] {
        Responder const responder;
        ProbeClient client;
        ASSERT_TRUE(client.Ask(MakeProbe("urn:uuid:1")));
        EXPECT_EQ(client.GetSource().address().to_string(), "127.0.0.1");
        EXPECT_NE(client.GetSource().port(), 3702);
    });
}

TEST(DiscoveryBase, SendsNothingToTheGroup) {
    OnOwnNetwork([] {
        // Without this route, a datagram that an unbound socket sends to the group would not arrive.
        ASSERT_TRUE(test::Ip("route add 239.255.255.250/32 dev lo src 127.0.0.1"));
        Responder const responder;
        Peer const client("127.0.0.1");
        Peer const bystander("239.255.255.250", client.GetPort());
        ASSERT_TRUE(bystander.IsBound());
        ASSERT_TRUE(bystander.Join("239.255.255.250", "127.0.0.1"));
        for (auto const* id : {"urn:uuid:1", "urn:uuid:2"}) {
            ASSERT_TRUE(client.Send(MakeProbe(id), "239.255.255.250", 3702));
            EXPECT_THAT(client.Receive().value_or(""), HasSubstr(id));
        }
        ASSERT_TRUE(client.Send("the first to the group", "239.255.255.250", client.GetPort()));
        EXPECT_EQ(bystander.Receive(), "the first to the group");
    });
}

TEST(DiscoveryBase, LogsRequestsAndResponses) {
    OnOwnNetwork([] {
        logging::Capture const log;
        auto const probe = MakeProbe("urn:uuid:1");
        Responder const responder;
        auto const answer = ProbeClient().Ask(probe);
        ASSERT_TRUE(answer);
        EXPECT_THAT(LinesOf(log), ElementsAre("4 Onvif discovery service started successfully",
                                              "2 Successfully parsed discovery request: " + probe,
                                              "2 Successfully generated discovery response: " + *answer));
    });
}

TEST(DiscoveryBase, LogsUnparsableDatagramsAndContinues) {
    OnOwnNetwork([] {
        logging::Capture const log;
        Responder const responder;
        ProbeClient client;
        client.Send("no \x01 probe");
        ASSERT_TRUE(client.Ask(MakeProbe("urn:uuid:1")));
        EXPECT_EQ(LinesOf(log).at(1), "2 Failed to parse discovery request: no \\x01 probe");
        EXPECT_EQ(responder.asked, 1);
    });
}

TEST(DiscoveryBase, LogsEachDatagramSeparately) {
    OnOwnNetwork([] {
        logging::Capture const log;
        Responder const responder;
        ProbeClient client;
        for (int i = 0; i < 3; ++i) client.Send("garbage");
        auto const probe = MakeProbe("urn:uuid:1");
        auto const first = client.Ask(probe);
        auto const second = client.Ask(probe);
        ASSERT_TRUE(first && second);
        std::string const failed = "2 Failed to parse discovery request: garbage";
        std::string const parsed = "2 Successfully parsed discovery request: " + probe;
        std::string const generated = "2 Successfully generated discovery response: ";
        EXPECT_THAT(LinesOf(log), ElementsAre("4 Onvif discovery service started successfully", failed, failed, failed,
                                              parsed, generated + *first, parsed, generated + *second));
    });
}

TEST(DiscoveryBase, SendsNothingWhenTheResponseIsInvalid) {
    OnOwnNetwork([] {
        logging::Capture const log;
        Responder const responder;
        ProbeClient client;
        auto const pointless = MakeProbe("");
        client.Send(pointless);
        auto const answer = client.Ask(MakeProbe("urn:uuid:1"));
        ASSERT_TRUE(answer);
        EXPECT_THAT(*answer, HasSubstr("urn:uuid:1")) << "the first message was answered";
        EXPECT_EQ(LinesOf(log).at(2), "2 Failed to generate discovery response for request: " + pointless);
    });
}

TEST(DiscoveryBase, IgnoresAReceiveError) {
    OnOwnNetwork([] {
        logging::Capture const log;
        Responder const responder;
        {
            FailingSocket const failing(3702);
            ASSERT_TRUE(test::Eventually([&] { return !failing.IsPending(); }));
        }
        auto const probe = MakeProbe("urn:uuid:1");
        ProbeClient client;
        auto const answer = client.Ask(probe);
        ASSERT_TRUE(answer);
        EXPECT_THAT(LinesOf(log), ElementsAre("4 Onvif discovery service started successfully",
                                              "2 Successfully parsed discovery request: " + probe,
                                              "2 Successfully generated discovery response: " + *answer));
        EXPECT_THAT(client.Ask(MakeProbe("urn:uuid:2")).value_or(""), HasSubstr("urn:uuid:2")) << "answered twice";
    });
}

#ifndef ZARN_SANITIZED_ADDRESSES // UBSan's type check opens pipes
TEST(DiscoveryBase, LogsAFailedSend) {
    OnOwnNetwork([] {
        logging::Capture const log;
        Responder const responder;
        ProbeClient client;
        ASSERT_TRUE(client.Ask(MakeProbe("urn:uuid:1"))) << "no answer before descriptors run out";
        NoDescriptors const none;
        client.Send(MakeProbe("urn:uuid:2"));
        ASSERT_TRUE(log.WaitFor("Failed to send discovery response: ", 60s));
        auto const lines = LinesOf(log);
        constexpr std::string_view Generated = "2 Successfully generated discovery response: ";
        auto const& generated = lines.at(lines.size() - 2);
        ASSERT_THAT(generated, StartsWith(std::string(Generated)));
        EXPECT_EQ(lines.back(), "2 Failed to send discovery response: " + generated.substr(Generated.size()) +
                                    " with error Too many open files ");
    });
}
#endif

TEST(DiscoveryBase, AcceptsADatagramOf65000Bytes) {
    OnOwnNetwork([] {
        Responder const responder;
        auto const probe = MakeProbe("urn:uuid:1");
        constexpr std::size_t Size = 65'000;
        ProbeClient client;
        client.Send(probe + "<!--" + std::string(Size - probe.size() - 7, 'x') + "-->", "127.0.0.1");
        EXPECT_THAT(client.Receive().value_or(""), HasSubstr("urn:uuid:1"));
    });
}

TEST(DiscoveryBase, RetriesUntilThereIsANetwork) {
    bool const entered = test::RunInNetworkNamespace([] {
        logging::Capture const log;
        Responder const responder(20ms);
        ASSERT_TRUE(AwaitLines(log, 1));
        EXPECT_EQ(LinesOf(log).front(),
                  Failed + std::string("no interface that is up has an IPv4 address and can multicast"));
        ASSERT_TRUE(test::Ip("link set lo up multicast on"));
        EXPECT_TRUE(log.WaitFor("Onvif discovery service started successfully", 60s));
        EXPECT_TRUE(ProbeClient().FindsAnybody());
    });
    if (!entered) GTEST_SKIP() << test::WhyNoNamespace();
}

TEST(DiscoveryBase, RetriesUntilThePortIsFree) {
    OnOwnNetwork([] {
        logging::Capture const log;
        auto holder = std::make_unique<PortHolder>();
        Responder const responder(20ms);
        ASSERT_TRUE(AwaitLines(log, 3));
        EXPECT_THAT(LinesOf(log), Each(FailedAsThePortIsHeld));
        holder.reset();
        EXPECT_TRUE(log.WaitFor("Onvif discovery service started successfully", 60s));
        EXPECT_TRUE(ProbeClient().FindsAnybody());
    });
}

TEST(DiscoveryBase, TriesOnceInEachInterval) {
    OnOwnNetwork([] {
        constexpr auto Interval = 200ms;
        logging::Capture const log;
        PortHolder const holder;
        auto const begin = std::chrono::steady_clock::now();
        Responder const responder(Interval);
        ASSERT_TRUE(AwaitLines(log, 2)) << "did not retry";
        auto const lines = LinesOf(log);
        auto const elapsed = std::chrono::steady_clock::now() - begin;
        EXPECT_THAT(lines, Each(FailedAsThePortIsHeld));
        EXPECT_LE(lines.size() - 1, static_cast<std::size_t>(elapsed / Interval)) << "retried too early";
        EXPECT_LT(elapsed, Responder::RetryInterval) << "retried too late";
    });
}

TEST(DiscoveryBase, RetriesAfterTenSecondsByDefault) {
    EXPECT_EQ(Responder::RetryInterval, 10s);
    OnOwnNetwork([] {
        logging::Capture const log;
        auto holder = std::make_unique<PortHolder>();
        auto const begin = std::chrono::steady_clock::now();
        Responder const responder;
        holder.reset();
        EXPECT_TRUE(log.WaitFor("Onvif discovery service started successfully", 60s));
        EXPECT_GE(std::chrono::steady_clock::now() - begin, 10s);
    });
}

std::ptrdiff_t CountThreads() { return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {}); }

/// Waits until at most `count` threads exist. A joined thread may remain visible for a moment.
bool AwaitThreads(std::ptrdiff_t count) {
    return test::Eventually([&] { return CountThreads() <= count; });
}

TEST(DiscoveryBase, DoesNotRetryOnceDestroyed) {
    OnOwnNetwork([] {
        logging::Capture const log;
        PortHolder const holder;
        auto const before = CountThreads();
        { Responder const responder(1h); }
        EXPECT_EQ(LinesOf(log).size(), 1U);
        { Responder const responder(1ms); }
        auto const lines = LinesOf(log).size();
        EXPECT_TRUE(AwaitThreads(before)) << "a thread that could retry still runs";
        EXPECT_EQ(LinesOf(log).size(), lines);
    });
}

/// Fails to begin because there is no memory to schedule a retry.
class HopelessResponder : public DiscoveryBase {
public:
    HopelessResponder() {
        test::FailingAlignedAlloc const failing;
        EXPECT_THROW(Begin(), std::bad_alloc);
    }

    ~HopelessResponder() override { End(); }

    HopelessResponder(HopelessResponder const&) = delete;
    HopelessResponder& operator=(HopelessResponder const&) = delete;

    Response HandleReceive(Request const&) override { return {}; }
};

TEST(DiscoveryBase, EndsItsThreadWhenItCannotStart) {
    OnOwnNetwork([] {
        PortHolder const holder;
        auto const before = CountThreads();
        HopelessResponder const responder;
        EXPECT_TRUE(AwaitThreads(before));
    });
}

TEST(DiscoveryBase, LeavesThePortFree) {
    OnOwnNetwork([] {
        { Responder const responder; }
        EXPECT_NO_THROW(PortHolder());
    });
}

TEST(DiscoveryBase, BeginsAndEndsInAFloodOfProbes) {
    OnOwnNetwork([] {
        Flood const flood;
        int asked = 0;
        int begun = 0;
        auto const deadline = std::chrono::steady_clock::now() + 100s;
        for (; (begun < test::StartsAndStops || asked == 0) && std::chrono::steady_clock::now() < deadline; ++begun) {
            Responder const responder;
            if (begun % 2 == 0) std::this_thread::yield();
            asked += responder.asked;
        }
        EXPECT_GE(begun, test::StartsAndStops);
        EXPECT_GT(asked, 0) << "the responder received no probes";
    });
}

} // namespace
} // namespace zarn::service::onvif
