// Slow, silent, vanishing and very numerous clients must not affect a well-behaved one.
#include "host/hostile_fixture.h"
#include "support/eventually.h"
#include "support/pull_point_client.h"
#include "support/server_connections.h"

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <string>
#include <vector>

namespace zarn::test {
namespace {

using namespace std::chrono_literals;
using Window = RawConnection::Window;
using Connections = std::deque<RawConnection>;

constexpr int Hundreds = 300;

class HostileClients : public HostileTest {
protected:
    /// settings  additional settings
    explicit HostileClients(std::vector<std::string> const& settings = {}) : HostileTest(Join(settings)) {
        // Each connection takes several descriptors in this process.
        rlimit limit{};
        getrlimit(RLIMIT_NOFILE, &limit);
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit);
        StartEvents();
    }

    /// Opens `count` connections and sends the same bytes on each.
    Connections ConnectMany(int count, std::string const& bytes, Window window = Window::Usual) const {
        Connections connections;
        for (int i = 0; i < count; ++i) connections.emplace_back(host.GetPort(), Process::Generous, window).Send(bytes);
        return connections;
    }

    void Vanish(Connections& connections) const {
        for (auto& connection : connections) connection.Reset();
    }

    /// A PullMessages request with this timeout on a new subscription.
    std::string MakePull(std::string const& timeout) const { return MakePullRequest(client.Subscribe(), timeout); }

    PullPointClient const client{host, PullPointClient::Login::None};

private:
    static std::vector<std::string> Join(std::vector<std::string> settings) {
        settings.emplace_back("settings.authentication.enabled=false");
        settings.emplace_back("settings.limits.connections_per_address=1000");
        return settings;
    }
};

/// A host with client time limits of one second.
class SlowClients : public HostileClients {
protected:
    SlowClients() : HostileClients({"settings.limits.header_seconds=1", "settings.limits.idle_seconds=1"}) {}
};

TEST_F(SlowClients, SendingSlowlyDelayNoOtherClient) {
    ExpectEverythingGivenBack([this] {
        auto headers = ConnectMany(Hundreds / 2, "POST /onvif/a HTTP/1.1\r\nA: ");
        auto bodies = ConnectMany(Hundreds / 2, "POST /onvif/a HTTP/1.1\r\nHost: h\r\nContent-Length: 1000\r\n\r\n");
        // Sending a byte does not extend the client's time.
        EXPECT_TRUE(Eventually([&] {
            for (auto* connections : {&headers, &bodies}) {
                for (auto& connection : *connections) {
                    if (!connection.HasUnread()) connection.Send("x");
                }
            }
            ExpectServed();
            return headers.back().HasUnread() && bodies.back().HasUnread();
        }));
        for (auto* connections : {&headers, &bodies}) {
            for (auto& connection : *connections) EXPECT_EQ(ReadStatus(connection), 408U);
        }
        ExpectServed();
    });
}

TEST_F(SlowClients, NotReadingDelayNoOtherClient) {
    auto readers = ConnectMany(Hundreds, Repeat(Health, 300), Window::Smallest);
    ExpectServed(60s); // about ten thousand answers come first; serving clients one by one would take minutes
    // The clients are still connected and have not shut down their side.
    ExpectEverythingGivenBack([] {});
}

TEST_F(HostileClients, ReadingLateGetEveryResponseInOrder) {
    auto readers = ConnectMany(3, Repeat(Health + "GET /nothing HTTP/1.1\r\nHost: h\r\n\r\n", 200), Window::Smallest);
    EXPECT_TRUE(Eventually([this] {
        auto const connections = ListServerConnections(host.GetPort());
        return std::ranges::count_if(connections, [](auto const& each) { return each.unsent > 0; }) == 3;
    })) << "no answers are held up by slow readers";
    ExpectServed();
    for (auto& reader : readers) {
        for (int i = 0; i < 200; ++i) {
            ASSERT_EQ(reader.Read().status, 200U);
            ASSERT_EQ(reader.Read().status, 404U);
        }
    }
}

TEST_F(SlowClients, SendingNothingAreDisconnected) {
    auto silent = ConnectMany(Hundreds, "");
    ExpectServed();
    ExpectEverythingGivenBack([] {});
    EXPECT_EQ(ReadStatus(silent.front()), NoAnswer);
}

TEST_F(SlowClients, SendingOnlyLineEndsAreDisconnected) {
    ExpectEverythingGivenBack([this] {
        RawConnection drip(host.GetPort());
        for (int i = 0; i < 5; ++i) drip.Send("\n");
        EXPECT_EQ(ReadStatus(drip), 400U);
    });
}

TEST_F(HostileClients, ClosingTheirSendingSideStillGetTheResponse) {
    for (auto const& request : {MakeSoapRequest("GetSystemDateAndTime"), MakePull("PT0.2S"), Health}) {
        auto connection = Connect();
        connection.Send(request);
        connection.EndSending();
        EXPECT_EQ(ReadStatus(connection), 200U);
        EXPECT_EQ(ReadStatus(connection), NoAnswer);
    }
    auto half = Connect();
    half.Send("GET /api/he");
    half.EndSending();
    EXPECT_EQ(ReadStatus(half), NoAnswer);
}

TEST_F(HostileClients, VanishingDuringARequestLeakNothing) {
    ExpectNoGrowth([this] {
        for (auto const* begun : {"", "G", "GET /api/health HTTP/1.1\r\nHost: h\r\n",
                                  "POST /onvif/a HTTP/1.1\r\nHost: h\r\nContent-Length: 1000000\r\n\r\nxxx",
                                  "POST /onvif/a HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nab"}) {
            auto connections = ConnectMany(50, begun);
            Vanish(connections);
            ExpectServed();
        }
    });
}

TEST_F(HostileClients, VanishingDuringAResponseLeakNothing) {
    ExpectNoGrowth([this] {
        auto readers = ConnectMany(100, Repeat(Health, 300), Window::Smallest);
        ExpectServed();
        Vanish(readers);
        auto unread = ConnectMany(100, Health);
        Vanish(unread);
        ExpectServed();
    });
}

TEST_F(HostileClients, VanishingDuringAPullLeakNothing) {
    ExpectEverythingGivenBack([this] {
        auto const subscription = client.Subscribe();
        auto const pull = MakePullRequest(subscription, "PT1H");
        auto vanishing = ConnectMany(100, pull);
        { auto const ending = ConnectMany(100, pull); }
        ASSERT_TRUE(Eventually(
            [this] { return host.GetHealth().at("listeners").at("web").at("exchanges").to_number<int>() > 100; }));
        ExpectServed();
        Vanish(vanishing);
        ExpectServed();
        EXPECT_EQ(client.Unsubscribe(subscription).status, 200);
    });
}

TEST_F(HostileClients, PipeliningBehindAPullGetTheirResponsesAfterIt) {
    auto connection = Connect();
    connection.Send(MakePull("PT0.3S") + Repeat(Health, 100));
    ExpectServed();
    for (int i = 0; i < 101; ++i) EXPECT_EQ(connection.Read().status, 200U);
}

/// A host with low connection limits.
class FloodingClients : public HostileClients {
protected:
    FloodingClients() : HostileClients({"settings.limits.connections=50", "settings.limits.exchanges=10"}) {}
};

TEST_F(FloodingClients, AreRefusedWith503WhileOthersAreServed) {
    ExpectNoGrowth([this] {
        auto served = Connect();
        EXPECT_EQ(served.Exchange(Health).status, 200U);
        ASSERT_TRUE(Eventually([this] { return GetUse().descriptors <= idle.descriptors + 1; }));
        auto const first = ConnectMany(49, "");
        ASSERT_TRUE(Eventually([this] { return GetUse().descriptors >= idle.descriptors + 50; }));
        for (int i = 0; i < 200; ++i) {
            auto const refusal = Connect().Read();
            EXPECT_EQ(refusal.status, 503U);
            EXPECT_TRUE(refusal.fields.contains("retry-after"));
        }
        EXPECT_LE(GetUse().descriptors, idle.descriptors + 51);
        EXPECT_EQ(served.Exchange(Health).status, 200U) << "an existing connection was closed";
    });
    ExpectServed();
}

TEST_F(FloodingClients, StartNoMoreThreadsThanTheLimitOfExchanges) {
    auto const pull = MakePull("PT1H");
    auto pulls = ConnectMany(10, pull);
    ASSERT_TRUE(Eventually([&] {
        // The health request itself counts as an exchange and may have displaced a pull; send that pull again.
        for (auto& each : pulls) {
            if (!each.HasUnread()) continue;
            EXPECT_EQ(each.Read().status, 503U);
            each.Send(pull);
        }
        return Connect().Exchange(Health).status == 503;
    }));
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(Connect().Exchange(MakeSoapRequest("GetSystemDateAndTime")).status, 503U);
    }
    EXPECT_LE(GetUse().threads, idle.threads + 10);
    host.ExpectStop();
    for (auto& each : pulls) EXPECT_EQ(each.Read().status, 200U);
}

} // namespace
} // namespace zarn::test
