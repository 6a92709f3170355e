#include "host/hostile_fixture.h"

#include "support/pull_point_client.h"

#include <algorithm>
#include <deque>
#include <utility>

namespace zarn::test {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// For how long the module keeps threads that have nothing to do, and some time to end them.
constexpr auto IdleThreadTime = 10s + 3s;

/// Attacks that are made one after the other leave no more threads than this, which wait for the next request.
constexpr std::size_t WaitingThreads = 2;

/// What the least resident memory after the last rounds of attacks may be above the most after the first ones. It goes
/// up and down for as long as one looks, by what heaps keep between pieces that are in use; one body of a megabyte that
/// is kept in each of the usual rounds is more.
[[maybe_unused]] constexpr std::size_t MemorySlack = std::size_t{3} * 1024 * 1024;

HostProcess::Options MakeOptions(std::vector<std::string> const& settings) {
    HostProcess::Options options;
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

HostileTest::HostileTest(std::vector<std::string> const& settings) : host(MakeOptions(settings)) {
    ExpectServed();
    MeasureIdle();
}

void HostileTest::StartEvents() {
    PullPointClient(host, PullPointClient::Login::None).Subscribe();
    MeasureIdle();
}

void HostileTest::MeasureIdle() {
    constexpr int SteadyLooks = 12; // a tenth of a second
    int steady = 0;
    idle = AwaitResourceUse(
        host.GetProcess().GetId(),
        [this, &steady](ResourceUse const& use) {
            steady = use.descriptors == idle.descriptors && use.threads == idle.threads ? steady + 1 : 0;
            idle = use;
            return steady == SteadyLooks;
        },
        2s);
}

void HostileTest::ExpectServed() const {
    auto const serve = [this] {
        auto const begun = Clock::now();
        EXPECT_EQ(Connect().Exchange(MakeSoapRequest("GetSystemDateAndTime")).status, 200U);
        return Clock::now() - begun;
    };
    // That the machine has been busy with something else for a second is not the host's fault. What holds the host up
    // holds up the second client as well.
    auto const time = serve();
    EXPECT_LT(time < 1s ? time : serve(), 1s);
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
    std::vector<std::size_t> memory;
    for (int i = 0; i < rounds; ++i) {
        attack();
        auto const use = AwaitResourceUse(
            host.GetProcess().GetId(),
            [this](ResourceUse const& now) {
                return now.threads <= idle.threads + WaitingThreads && now.descriptors <= idle.descriptors;
            },
            2s);
        EXPECT_LE(use.threads, idle.threads + WaitingThreads);
        EXPECT_LE(use.descriptors, idle.descriptors);
        memory.push_back(use.memory);
    }
#ifndef ZARN_KEEPS_FREED_MEMORY
    auto const third = (rounds + 2) / 3;
    auto const atFirst = *std::max_element(memory.begin(), memory.begin() + third);
    auto const atLast = *std::min_element(memory.end() - third, memory.end());
    EXPECT_LE(atLast, atFirst + MemorySlack) << testing::PrintToString(memory);
#endif
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

} // namespace zarn::test
