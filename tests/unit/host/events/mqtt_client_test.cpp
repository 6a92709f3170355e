#include "host/events/mqtt_client.h"
#include "support/broker.h"
#include "support/certificate.h"
#include "support/eventually.h"

#include <zarn/logging/capture.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace zarn::host::events {
namespace {

using namespace std::chrono_literals;
using test::Broker;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

/// A client that records the types of the events it receives.
class Intake {
public:
    explicit Intake(MqttSettings const& settings, std::chrono::milliseconds timeToConnect = MqttClient::TimeToConnect)
        : client(
              [this](auto const& event) {
                  std::lock_guard const lock(mutex);
                  taken.push_back(event->GetType());
              },
              timeToConnect) {
        client.Configure(settings);
    }

    std::vector<std::string> GetTaken() const {
        std::lock_guard const lock(mutex);
        return taken;
    }

    bool AwaitState(MqttState state) const { return GetStatusIn(state).has_value(); }

    /// Waits until the client has reached a state and returns the status then; the client may already have left the
    /// state.
    std::optional<MqttStatus> GetStatusIn(MqttState state) const {
        std::optional<MqttStatus> status;
        bool const came = test::Eventually([&] { return (status = client.GetStatus())->state == state; });
        return came ? status : std::nullopt;
    }

    bool AwaitTaken(std::size_t count) const {
        return test::Eventually([&] { return GetTaken().size() >= count; });
    }

    /// Waits until the newest event has this type and its message is counted. Returns the number of messages so far.
    std::uint64_t CountUpTo(std::string const& type) const {
        EXPECT_TRUE(test::Eventually([&] { return !GetTaken().empty() && GetTaken().back() == type; })) << type;
        // Each message holds one event and is counted after the event is handled.
        auto const count = GetTaken().size();
        EXPECT_TRUE(AwaitReceived(count));
        return count;
    }

    bool AwaitReceived(std::uint64_t count) const {
        return test::Eventually([&] { return client.GetStatus().received >= count; });
    }

private:
    mutable std::mutex mutex;
    std::vector<std::string> taken;

public:
    MqttClient client;
};

std::vector<std::string> Numbers(int count) {
    std::vector<std::string> numbers;
    for (int i = 0; i < count; ++i) numbers.push_back(std::to_string(i));
    return numbers;
}

MqttSettings For(Broker const& broker) {
    return {.enabled = true, .url = broker.GetUrl(), .topic = "events", .clientId = "a test's host"};
}

TEST(MqttClient, ReceivesEventsInOrder) {
    Broker const broker;
    Intake intake(For(broker));
    ASSERT_TRUE(intake.AwaitState(MqttState::Connected));
    broker.PublishNumbered("events", 1000);
    EXPECT_TRUE(intake.AwaitReceived(1000));
    EXPECT_EQ(intake.GetTaken(), Numbers(1000));
    auto const status = intake.client.GetStatus();
    EXPECT_EQ(status.received, 1000U);
    EXPECT_EQ(status.events, 1000U);
    EXPECT_EQ(status.refused, 0U);
}

TEST(MqttClient, AcceptsOrRefusesAListAsAWhole) {
    Broker const broker;
    Intake intake(For(broker));
    ASSERT_TRUE(intake.AwaitState(MqttState::Connected));
    broker.Publish("events", R"([{"type": "a"}, {"type": ""}])");
    broker.Publish("events", R"([{"type": "b"}, {"type": "c"}])");
    ASSERT_TRUE(intake.AwaitReceived(2));
    EXPECT_THAT(intake.GetTaken(), ElementsAre("b", "c"));
    EXPECT_EQ(intake.client.GetStatus().events, 2U);
    EXPECT_EQ(intake.client.GetStatus().refused, 1U);
}

TEST(MqttClient, LogsInvalidMessagesAtMostOnceASecond) {
    logging::Capture const log;
    Broker const broker;
    Intake intake(For(broker));
    ASSERT_TRUE(intake.AwaitState(MqttState::Connected));
    auto const begin = std::chrono::steady_clock::now();
    for (int i = 0; i < 5; ++i) broker.Publish("events", R"({"type": "a", "colour": 1})");
    ASSERT_TRUE(intake.AwaitReceived(5));
    auto const seconds = std::chrono::ceil<std::chrono::seconds>(std::chrono::steady_clock::now() - begin).count();
    EXPECT_EQ(intake.client.GetStatus().refused, 5U);
    EXPECT_THAT(intake.GetTaken(), IsEmpty());
    EXPECT_TRUE(log.Contains("topic events: event 1: colour: there is no such field"));
    long lines = 0;
    for (auto const& line : log.GetLines()) lines += line.text.starts_with("Refused a message") ? 1 : 0;
    EXPECT_LE(lines, seconds);
}

TEST(MqttClient, ReceivesWhatTheBrokerQueuedAcrossRestarts) {
    Broker broker;
    {
        Intake first(For(broker));
        ASSERT_TRUE(first.AwaitState(MqttState::Connected));
    }
    broker.PublishNumbered("events", 500);
    broker.Stop();
    broker.Start();
    Intake second(For(broker));
    EXPECT_TRUE(second.AwaitTaken(500));
    EXPECT_EQ(second.GetTaken(), Numbers(500));
}

TEST(MqttClient, ReconnectsWhenTheBrokerReturns) {
    logging::Capture const log;
    Broker broker;
    Intake intake(For(broker));
    ASSERT_TRUE(intake.AwaitState(MqttState::Connected));
    broker.Publish("events", R"({"type": "before"})");
    ASSERT_TRUE(intake.AwaitTaken(1));
    broker.Stop();
    ASSERT_TRUE(intake.AwaitState(MqttState::Waiting));
    EXPECT_NE(intake.client.GetStatus().detail, "");
    broker.Start();
    broker.Publish("events", R"({"type": "while away"})");
    // A broker that stops before it reads the acknowledgement delivers "before" again.
    intake.CountUpTo("while away");
    auto taken = intake.GetTaken();
    taken.pop_back();
    EXPECT_THAT(taken, AllOf(Not(IsEmpty()), testing::Each("before")));
    EXPECT_TRUE(intake.AwaitState(MqttState::Connected));
    EXPECT_EQ(intake.client.GetStatus().detail, "");
    EXPECT_TRUE(log.Contains("No connection to " + broker.GetUrl()));
}

/// A broker with the user "host" and the password "the right one".
class PasswordBroker {
public:
    PasswordBroker() : broker(Protect()) {}

    MqttSettings Login(std::string password) const {
        auto settings = For(broker);
        settings.user = "host";
        settings.password = std::move(password);
        return settings;
    }

    void Publish() const { broker.Publish("events", R"({"type": "a"})", {"-u", "host", "-P", "the right one"}); }

private:
    std::string Protect() const {
        auto const file = folder / "passwords";
        test::Process program({"mosquitto_passwd", "-b", "-c", file, "host", "the right one"});
        EXPECT_EQ(program.Wait(60s), 0) << program.GetLog();
        return "allow_anonymous false\npassword_file " + file + "\n";
    }

    test::TemporaryFolder folder;
    Broker broker;
};

TEST(MqttClient, LogsIn) {
    PasswordBroker const broker;
    Intake intake(broker.Login("the right one"));
    ASSERT_TRUE(intake.AwaitState(MqttState::Connected));
    broker.Publish();
    EXPECT_TRUE(intake.AwaitTaken(1));
}

TEST(MqttClient, ReportsAWrongPasswordWithoutRepeatingIt) {
    logging::Capture const log;
    PasswordBroker const broker;
    Intake intake(broker.Login("a wrong one"));
    auto const status = intake.GetStatusIn(MqttState::Waiting);
    ASSERT_TRUE(status);
    auto const health = boost::json::serialize(ToJson(*status));
    EXPECT_THAT(health, AllOf(HasSubstr(R"("state":"waiting")"), HasSubstr("login: "), Not(HasSubstr("wrong one"))));
    EXPECT_TRUE(log.Contains("login: "));
    EXPECT_FALSE(log.Contains("wrong one"));
    intake.client.Configure(broker.Login("the right one"));
    EXPECT_TRUE(intake.AwaitState(MqttState::Connected));
}

/// A TLS broker with its own certificate for localhost and 127.0.0.1.
class TlsBroker {
public:
    explicit TlsBroker(std::string address = "127.0.0.1")
        : broker("allow_anonymous true\ncertfile " + own.certificate + "\nkeyfile " + own.key + "\n",
                 std::move(address)) {}

    MqttSettings For(std::string const& host, std::string caFile) const {
        return {.enabled = true,
                .url = "mqtts://" + host + ":" + std::to_string(broker.GetPort()),
                .topic = "events",
                .clientId = "a",
                .caFile = std::move(caFile)};
    }

    test::TemporaryFolder const folder;
    test::Certificate const own{folder, "own"};
    test::Certificate const other{folder, "other"};
    Broker broker;
};

TEST(MqttClientWithTls, TrustsTheConfiguredAuthority) {
    TlsBroker const tls;
    for (auto const* const host : {"127.0.0.1", "localhost"}) {
        Intake intake(tls.For(host, tls.own.certificate));
        ASSERT_TRUE(intake.AwaitState(MqttState::Connected)) << intake.client.GetStatus().detail;
        tls.broker.Publish("events", R"({"type": "a"})", {"--cafile", tls.own.certificate});
        EXPECT_TRUE(intake.AwaitTaken(1));
    }
}

TEST(MqttClientWithTls, TrustsNoOtherAuthority) {
    TlsBroker const tls;
    for (auto const& caFile : {tls.other.certificate, std::string()}) {
        logging::Capture const log;
        Intake intake(tls.For("127.0.0.1", caFile));
        ASSERT_TRUE(intake.AwaitState(MqttState::Waiting));
        EXPECT_THAT(intake.client.GetStatus().detail, HasSubstr("TLS error"));
        EXPECT_TRUE(log.WaitFor("certificate verify failed", 60s));
    }
}

TEST(MqttClientWithTls, RejectsACertificateForAnotherName) {
    logging::Capture const log;
    TlsBroker const tls("127.0.0.2");
    Intake intake(tls.For("127.0.0.2", tls.own.certificate));
    ASSERT_TRUE(intake.AwaitState(MqttState::Waiting));
    EXPECT_TRUE(log.WaitFor("host name verification failed", 60s));
}

TEST(MqttClientWithTls, DoesNotConnectWithAnUnusableCaFile) {
    TlsBroker const tls;
    for (auto const& file : {tls.folder / "none", tls.folder.Write("empty", "")}) {
        Intake intake(tls.For("127.0.0.1", file));
        ASSERT_TRUE(intake.AwaitState(MqttState::Waiting));
        EXPECT_THAT(intake.client.GetStatus().detail, Not(HasSubstr(file)));
    }
}

TEST(MqttClientWithTls, ReportsARefusedConnection) {
    TlsBroker tls;
    tls.broker.Stop();
    Intake intake(tls.For("127.0.0.1", tls.own.certificate));
    ASSERT_TRUE(intake.AwaitState(MqttState::Waiting));
    EXPECT_THAT(intake.client.GetStatus().detail, StartsWith("connection: ")) << "must fail at once, not by a timeout";
}

TEST(MqttClientWithTls, ReconnectsWhenTheBrokerReturns) {
    TlsBroker tls;
    Intake intake(tls.For("127.0.0.1", tls.own.certificate));
    ASSERT_TRUE(intake.AwaitState(MqttState::Connected));
    tls.broker.Stop();
    ASSERT_TRUE(intake.AwaitState(MqttState::Waiting));
    tls.broker.Start();
    tls.broker.Publish("events", R"({"type": "a"})", {"--cafile", tls.own.certificate});
    EXPECT_TRUE(intake.AwaitTaken(1));
}

TEST(MqttClient, IsOffUntilEnabled) {
    Broker const broker;
    auto settings = For(broker);
    settings.enabled = false;
    Intake intake(settings);
    EXPECT_EQ(intake.client.GetStatus().state, MqttState::Off);
    settings.enabled = true;
    intake.client.Configure(settings);
    EXPECT_TRUE(intake.AwaitState(MqttState::Connected));
    settings.enabled = false;
    intake.client.Configure(settings);
    EXPECT_TRUE(intake.AwaitState(MqttState::Off));
}

TEST(MqttClient, FollowsAChangeOfTheTopic) {
    Broker const broker;
    auto settings = For(broker);
    Intake intake(settings);
    ASSERT_TRUE(intake.AwaitState(MqttState::Connected));
    settings.topic = "site/+/events";
    intake.client.Configure(settings);
    ASSERT_TRUE(test::Eventually([&] {
        broker.Publish("site/1/events", R"({"type": "new"})");
        return !intake.GetTaken().empty();
    }));
    // Events that arrived while the change took effect are counted before this one.
    broker.Publish("site/1/events", R"({"type": "settled"})");
    auto const before = intake.CountUpTo("settled");
    broker.Publish("events", R"({"type": "old"})");
    broker.Publish("site/1/events", R"({"type": "last"})");
    EXPECT_EQ(intake.CountUpTo("last"), before + 1);
    EXPECT_EQ(intake.client.GetStatus().received, before + 1);
    EXPECT_EQ(intake.client.GetStatus().refused, 0U);
}

TEST(MqttClient, FollowsAChangeOfTheBroker) {
    Broker const first;
    Broker const second;
    Intake intake(For(first));
    ASSERT_TRUE(intake.AwaitState(MqttState::Connected));
    intake.client.Configure(For(second));
    ASSERT_TRUE(test::Eventually([&] {
        second.Publish("events", R"({"type": "a"})");
        return !intake.GetTaken().empty();
    }));
}

TEST(MqttClient, RefusesMessagesOfAnEarlierSubscription) {
    logging::Capture const log;
    Broker const broker;
    auto settings = For(broker);
    {
        Intake earlier(settings);
        ASSERT_TRUE(earlier.AwaitState(MqttState::Connected));
    }
    settings.topic = "other";
    Intake intake(settings);
    ASSERT_TRUE(intake.AwaitState(MqttState::Connected));
    broker.Publish("events", R"({"type": "a"})");
    ASSERT_TRUE(intake.AwaitReceived(1));
    EXPECT_THAT(intake.GetTaken(), IsEmpty());
    EXPECT_TRUE(log.Contains("an earlier subscription of this client_id"));
}

TEST(MqttClient, RefusesRetainedMessages) {
    Broker const broker;
    broker.Publish("events", R"({"type": "a"})", {"--retain"});
    Intake intake(For(broker));
    ASSERT_TRUE(intake.AwaitReceived(1));
    EXPECT_THAT(intake.GetTaken(), IsEmpty());
    EXPECT_EQ(intake.client.GetStatus().refused, 1U);
}

TEST(MqttClient, BoundsTheSizeOfAMessage) {
    Broker const broker;
    Intake intake(For(broker));
    ASSERT_TRUE(intake.AwaitState(MqttState::Connected));
    std::string const event = R"({"type": "a"})";
    broker.Publish("events", event + std::string(MqttClient::LongestMessage - event.size(), ' '));
    broker.Publish("events", event + std::string(MqttClient::LongestMessage - event.size() + 1, ' '));
    ASSERT_TRUE(intake.AwaitReceived(2));
    EXPECT_EQ(intake.client.GetStatus().events, 1U);
    EXPECT_EQ(intake.client.GetStatus().refused, 1U);
}

TEST(MqttClient, TakesPartInASharedSubscription) {
    Broker const broker;
    auto settings = For(broker);
    settings.topic = "$share/hosts/events";
    Intake intake(settings);
    ASSERT_TRUE(intake.AwaitState(MqttState::Connected));
    broker.Publish("events", R"({"type": "a"})");
    EXPECT_TRUE(intake.AwaitTaken(1));
}

TEST(MqttClient, TriesEveryAddressOfTheBrokersName) {
    Broker const broker;
    auto settings = For(broker);
    settings.url = "mqtt://localhost:" + std::to_string(broker.GetPort());
    Intake intake(settings);
    EXPECT_TRUE(intake.AwaitState(MqttState::Connected)) << intake.client.GetStatus().detail;
}

TEST(MqttClient, ReportsARefusedConnection) {
    Broker broker;
    broker.Stop();
    Intake intake(For(broker));
    ASSERT_TRUE(intake.AwaitState(MqttState::Waiting));
    EXPECT_THAT(intake.client.GetStatus().detail, HasSubstr("connection: "));
}

/// Accepts connections but never responds.
class SilentServer {
public:
    std::string GetAddress() const { return "127.0.0.1:" + std::to_string(acceptor.local_endpoint().port()); }

private:
    boost::asio::io_context context;
    boost::asio::ip::tcp::acceptor acceptor{context, {boost::asio::ip::address_v4::loopback(), 0}};
};

TEST(MqttClient, StopsAtOnceInEveryState) {
#ifdef ZARN_SANITIZED // loading the system's certificates is slow and cannot be interrupted
    constexpr auto limit = 10s;
#else
    constexpr auto limit = MqttClient::TimeToConnect / 2;
#endif
    SilentServer const silent;
    Broker const broker;
    for (auto const& url : {broker.GetUrl(), "mqtt://" + silent.GetAddress(), "mqtts://" + silent.GetAddress(),
                            std::string("mqtt://192.0.2.1"), std::string("mqtt://127.0.0.1:1")}) {
        Intake intake({.enabled = true, .url = url, .topic = "events", .clientId = "a"});
        EXPECT_TRUE(test::Eventually([&] { return intake.client.GetStatus().state != MqttState::Off; }));
        auto const begin = std::chrono::steady_clock::now();
        intake.client.Stop();
        EXPECT_LT(std::chrono::steady_clock::now() - begin, limit) << url;
        intake.client.Stop();
    }
}

TEST(MqttClient, GivesUpOnASilentBroker) {
    SilentServer const silent;
    Intake intake({.enabled = true, .url = "mqtt://" + silent.GetAddress(), .topic = "events", .clientId = "a"}, 100ms);
    ASSERT_TRUE(intake.AwaitState(MqttState::Waiting));
    EXPECT_EQ(intake.client.GetStatus().detail, "the broker does not answer");
}

} // namespace
} // namespace zarn::host::events
