#include "host/hostile_fixture.h"

#include "support/eventually.h"
#include "support/pull_point_client.h"
#include "support/server_connections.h"

#include <deque>
#include <utility>

namespace zarn::test {
namespace {

using namespace std::chrono_literals;

/// How long the module keeps idle threads, plus time to end them.
constexpr auto IdleThreadTime = 10s + Process::Generous;

/// Maximum number of idle threads left by attacks that run one after another.
constexpr std::size_t WaitingThreads = 2;

/// Permitted heap growth over the best previous round. It covers the WaitingThreads, which may or may not be alive: at
/// most ten blocks and two kilobytes as measured. One block leaked per connection exceeds it.
constexpr std::int64_t MoreBytes = 8 * 1024;
constexpr std::int64_t MoreBlocks = 20;

/// Each web server thread caches a few small blocks, and chance decides which thread serves a connection. After this
/// many connections all caches are full.
constexpr int FillingConnections = 1000;

HostProcess::Options MakeOptions(std::vector<std::string> const& settings, HeapCount const& heap,
                                 std::shared_ptr<TemporaryFolder> folder) {
    HostProcess::Options options{.environment = heap.GetEnvironment(), .folder = std::move(folder)};
    for (auto const& setting : settings) {
        options.arguments.emplace_back("--set");
        options.arguments.push_back(setting);
    }
    return options;
}

} // namespace

unsigned ReadStatus(RawConnection& connection) {
    for (;;) {
        auto const response = connection.ReadIfAny();
        if (!response) return NoAnswer;
        if (response->status >= 200) return response->status;
    }
}

std::string MakePost(std::string_view body, std::string_view fields, std::string_view target) {
    std::string request = "POST ";
    request.append(target).append(" HTTP/1.1\r\nHost: localhost\r\n").append(fields);
    request.append("Content-Length: ").append(std::to_string(body.size())).append("\r\n\r\n").append(body);
    return request;
}

std::string Repeat(std::string_view text, std::size_t times) {
    std::string result;
    result.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i) result += text;
    return result;
}

HostileTest::HostileTest(std::vector<std::string> const& settings) : host(MakeOptions(settings, heap, folder)) {
    ExpectServed();
    MeasureIdle();
}

void HostileTest::StartEvents() {
    PullPointClient(host, PullPointClient::Login::None).Subscribe();
    MeasureIdle();
}

void HostileTest::MeasureIdle() {
    EXPECT_TRUE(Eventually([this] { return ListServerConnections(host.GetPort()).empty(); }));
    idle = GetUse();
}

void HostileTest::ExpectServed(std::chrono::seconds limit) const {
    auto const serve = [&] {
        auto const before = host.GetProcess().GetProcessorTime();
        EXPECT_EQ(RawConnection(host.GetPort(), limit).Exchange(MakeSoapRequest("GetSystemDateAndTime")).status, 200U);
        return host.GetProcess().GetProcessorTime() - before;
    };
    // The host may still be processing hundreds of requests of other clients. If they delay this client, they delay the
    // next one as well.
    auto time = serve();
    for (int attempt = 1; time >= 1s && attempt < 3; ++attempt) time = serve();
    EXPECT_LT(time, 1s);
}

void HostileTest::ExpectAnswers(std::vector<Attack> const& attacks, int rounds) {
    auto const attackAll = [&] {
        for (auto const& attack : attacks) {
            SCOPED_TRACE(attack.name);
            auto connection = Connect();
            connection.Send(attack.bytes);
            EXPECT_EQ(ReadStatus(connection), attack.status);
            ExpectServed();
        }
    };
    ExpectNoGrowth(attackAll, rounds);
}

void HostileTest::ExpectAnswersSideBySide(std::vector<Attack> const& attacks) {
    ExpectNoGrowth(
        [&] {
            std::deque<RawConnection> connections;
            for (auto const& attack : attacks) connections.emplace_back(host.GetPort()).Send(attack.bytes);
            ExpectServed();
            for (auto const& attack : attacks) {
                SCOPED_TRACE(attack.name);
                EXPECT_EQ(ReadStatus(connections.front()), attack.status);
                connections.pop_front();
            }
            ExpectServed();
        },
        3);
}

void HostileTest::ExpectNoGrowth(std::function<void()> const& attack, int rounds) {
    FillCaches();
    HeapCount::Use least{};
    for (int i = 0; i < rounds; ++i) {
        attack();
        ExpectDescriptorsAndThreadsBack();
        HeapCount::Use use{};
        auto const isBack = [&] {
            use = heap.Get();
            return i == 0 || (use.bytes <= least.bytes + MoreBytes && use.blocks <= least.blocks + MoreBlocks);
        };
        EXPECT_TRUE(Eventually(isBack, Process::Generous))
            << "round " << i << ": " << use.bytes << " bytes in " << use.blocks << " blocks after " << least.bytes
            << " in " << least.blocks;
        if (i == 0 || use.bytes < least.bytes) least = use;
    }
}

void HostileTest::FillCaches() {
    if (!heap.IsCounting()) return;
    for (int i = 0; i < FillingConnections; ++i) {
        auto connection = Connect();
        connection.Send(MakeSoapRequest("GetSystemDateAndTime"));
        connection.ReadIfAny();
    }
}

void HostileTest::ExpectEverythingGivenBack(std::function<void()> const& attack) {
    attack();
    auto const use = AwaitResourceUse(
        host.GetProcess().GetId(),
        [this](ResourceUse const& now) { return now.threads <= idle.threads && now.descriptors <= idle.descriptors; },
        IdleThreadTime);
    EXPECT_LE(use.threads, idle.threads);
    EXPECT_LE(use.descriptors, idle.descriptors);
    ExpectServed();
}

void HostileTest::ExpectDescriptorsAndThreadsBack() const {
    auto const use = AwaitResourceUse(
        host.GetProcess().GetId(),
        [this](ResourceUse const& now) {
            return now.threads <= idle.threads + WaitingThreads && now.descriptors <= idle.descriptors;
        },
        IdleThreadTime);
    EXPECT_LE(use.threads, idle.threads + WaitingThreads);
    EXPECT_LE(use.descriptors, idle.descriptors);
}

} // namespace zarn::test
