#include "pull_point_fixture.h"

#include <zarn/onvif/events/subscription_gauge.h>

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace zarn::test {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// The name of a publisher's n-th event (n from 1) is the number publisher * PerPublisher + n.
constexpr std::int64_t PerPublisher = 1'000'000'000;

/// A number from the environment, or the default when the variable is not set.
unsigned Read(char const* variable, unsigned otherwise) {
    char const* const text = std::getenv(variable);
    return text ? static_cast<unsigned>(std::stoul(text)) : otherwise;
}

/// A subscription and the numbers of all events pulled from it.
struct Target {
    explicit Target(std::string path) : path(std::move(path)) {}

    std::string const path;
    std::mutex mutex; ///< guards seen
    std::set<std::int64_t> seen;
};

/// Clients that perform random operations on random subscriptions for ZARN_STORM_SECONDS. ZARN_STORM_SEED determines
/// each client's operations but not how the clients interleave.
class PullPointStorm : public PullPointFixture {
protected:
    using Random = std::mt19937;

    /// Creates, renews, pulls and unsubscribes at random.
    void RunClient(Random::result_type seed) {
        Random random(seed);
        Seen seen;
        while (GoesOn()) {
            auto const target = Choose(random);
            switch (random() % 8) {
            case 0:
                Create(random);
                break;
            case 1:
                Unsubscribe(*target);
                break;
            case 2:
            case 3:
                Renew(*target, random);
                break;
            default:
                Pull(target, random, seen);
            }
        }
    }

    void RunPublisher(Random::result_type seed, std::int64_t publisher) {
        Random random(seed);
        for (std::int64_t number = 1; GoesOn(); ++number) {
            Publish(MakeFieldEvent(std::to_string(publisher * PerPublisher + number)));
            if (random() % 4 == 0) std::this_thread::sleep_for(std::chrono::microseconds(random() % 2000));
        }
    }

    void Create(Random& random) {
        constexpr std::array Ends{"PT0S", "PT0.005S", "PT0.02S", "PT0.2S", "PT1H"};
        auto target = std::make_shared<Target>(Subscribe(Termination(Ends.at(random() % Ends.size()))));
        std::scoped_lock const lock(mutex);
        all.push_back(target);
        // Clients share subscriptions, including ended ones.
        if (current.size() < 12) return current.push_back(std::move(target));
        current[random() % current.size()] = std::move(target);
    }

    /// Expects no gap between the first and the last event pulled from a subscription.
    static void ExpectNoGap(Target const& target) {
        for (auto at = target.seen.begin(); at != target.seen.end(); ++at) {
            auto const next = std::next(at);
            if (next == target.seen.end() || *next / PerPublisher != *at / PerPublisher) continue;
            EXPECT_EQ(*next, *at + 1) << target.path;
        }
    }

    /// Allow extra time for the first event on a slow machine.
    bool GoesOn() const {
        auto const now = Clock::now();
        return now < end || (events == 0 && now < end + 30s);
    }

    Clock::time_point const end = Clock::now() + std::chrono::seconds(Read("ZARN_STORM_SECONDS", 1));
    std::vector<std::shared_ptr<Target>> all;
    std::atomic<std::size_t> events = 0; ///< pulled from the subscriptions

private:
    /// The last event of each publisher that one client pulled from a subscription.
    using Seen = std::map<std::pair<std::shared_ptr<Target>, std::int64_t>, std::int64_t>;

    std::shared_ptr<Target> Choose(Random& random) {
        std::scoped_lock const lock(mutex);
        return current[random() % current.size()];
    }

    void Unsubscribe(Target const& target) { EXPECT_EQ(PullPointFixture::Unsubscribe(target.path).status, 200); }

    void Renew(Target const& target, Random& random) {
        constexpr std::array Ends{"2001-01-01T00:00:00Z", "PT0.01S", "PT0.1S", "PT1H", "PT1H"};
        auto const reply = PullPointFixture::Renew(target.path, Ends.at(random() % Ends.size()));
        if (reply.status != 200) {
            EXPECT_THAT(reply, IsNotFound());
        }
    }

    void Pull(std::shared_ptr<Target> const& target, Random& random, Seen& seen) {
        constexpr std::array Limits{0, 1, 3, 1000};
        constexpr std::array Timeouts{"PT0S", "PT0.003S", "PT0.03S"};
        auto const limit = Limits.at(random() % Limits.size());
        auto const reply = PullPointFixture::Pull(target->path, limit, Timeouts.at(random() % Timeouts.size()));
        if (reply.status != 200) {
            EXPECT_THAT(reply, IsNotFound());
        }
        auto const rules = GetRules(reply);
        EXPECT_LE(rules.size(), static_cast<std::size_t>(limit));
        for (auto const& rule : rules) {
            auto const number = std::stoll(rule);
            EXPECT_LT(std::exchange(seen[{target, number / PerPublisher}], number), number) << "out of order";
            std::scoped_lock const lock(target->mutex);
            EXPECT_TRUE(target->seen.insert(number).second) << number << " was delivered twice";
            ++events;
        }
    }

    std::mutex mutex; ///< guards all and current
    std::vector<std::shared_ptr<Target>> current;
};

TEST_F(PullPointStorm, LosesNothingRepeatsNothingAndLeavesNothing) {
    auto const seed = Read("ZARN_STORM_SEED", std::random_device{}());
    SCOPED_TRACE("ZARN_STORM_SEED=" + std::to_string(seed));
    Random random(seed);
    Create(random);
    {
        std::vector<std::jthread> threads;
        for (unsigned i = 0; i < 6; ++i) threads.emplace_back([this, at = random()] { RunClient(at); });
        for (unsigned i = 0; i < 2; ++i) threads.emplace_back([this, i, at = random()] { RunPublisher(at, i); });
    }
    std::set<std::int32_t> ids;
    for (auto const& target : all) {
        EXPECT_EQ(PullPointFixture::Unsubscribe(target->path).status, 200);
        ids.insert(std::stoi(target->path.substr(target->path.rfind('=') + 1)));
        ExpectNoGap(*target);
    }
    EXPECT_EQ(ids.size(), all.size()) << "two subscriptions have the same id";
    EXPECT_GT(events, 0U);
    RecordProperty("subscriptions", std::to_string(all.size()));
    RecordProperty("events", std::to_string(events));
    for (auto const& status : onvif::events::GetSubscriptions()) EXPECT_FALSE(ids.contains(status.id)) << status.id;
}

} // namespace
} // namespace zarn::test
