#include "job/schedule.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <list>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace zarn::job {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A worker without a thread: the test runs its job.
class TestWorker final : public Schedule::Worker {
public:
    explicit TestWorker(Task task = {}, bool hasTurn = false) : Worker(std::move(task), hasTurn) {}

    /// Runs its task as the pool does.
    void Run() {
        Task const taken = std::exchange(task, {});
        taken.job();
    }

    int notices = 0;

private:
    void Notify() noexcept override { ++notices; }
};

class ScheduleTest : public testing::Test {
protected:
    /// A task that appends its name to `ran`.
    Task MakeTask(std::string name) {
        return {[this, name = std::move(name)] { ran.push_back(name); }, nullptr};
    }

    /// Posts a task; true when a worker or the queue has taken it.
    bool Post(Schedule& schedule, std::string name) {
        auto task = MakeTask(std::move(name));
        return schedule.Post(task);
    }

    /// A worker whose job runs.
    std::unique_ptr<TestWorker> Busy(Schedule& schedule) {
        auto task = MakeTask("busy");
        EXPECT_FALSE(schedule.Post(task));
        auto worker = std::make_unique<TestWorker>(std::move(task), true);
        EXPECT_TRUE(schedule.FindTask(*worker));
        worker->task = {};
        return worker;
    }

    /// A worker that waits for a task.
    static std::unique_ptr<TestWorker> Idle(Schedule& schedule) {
        schedule.AddThread();
        auto worker = std::make_unique<TestWorker>();
        schedule.AddIdle(*worker);
        return worker;
    }

    /// A worker whose job sleeps.
    std::unique_ptr<TestWorker> Asleep(Schedule& schedule) {
        auto worker = Busy(schedule);
        EXPECT_FALSE(schedule.Sleep(*worker));
        return worker;
    }

    std::vector<std::string> ran;
};

TEST_F(ScheduleTest, AsksForAThreadWhenNoWorkerIsIdle) {
    Schedule schedule(2);
    auto task = MakeTask("task");
    EXPECT_FALSE(schedule.Post(task));
    EXPECT_TRUE(task.job) << "the caller has lost the task";
    EXPECT_EQ(schedule.GetThreadCount(), 1U);
}

TEST_F(ScheduleTest, GivesATaskToTheWorkerThatBecameIdleLast) {
    Schedule schedule(2);
    auto const first = Idle(schedule);
    auto const second = Idle(schedule);
    EXPECT_TRUE(Post(schedule, "task"));
    EXPECT_FALSE(first->HasTurn());
    ASSERT_TRUE(second->HasTurn());
    EXPECT_EQ(second->notices, 1);
    second->Run();
    EXPECT_THAT(ran, ElementsAre("task"));
}

TEST_F(ScheduleTest, QueuesTasksWhenAllTurnsAreTaken) {
    Schedule schedule(1);
    auto const busy = Busy(schedule);
    auto const idle = Idle(schedule);
    for (auto const* name : {"a", "b"}) EXPECT_TRUE(Post(schedule, name));
    EXPECT_FALSE(idle->HasTurn());
    while (schedule.FindTask(*busy)) busy->Run();
    EXPECT_THAT(ran, ElementsAre("a", "b"));
}

TEST_F(ScheduleTest, GivesTheTurnOfASleepingJobToAnIdleWorker) {
    Schedule schedule(1);
    auto const busy = Busy(schedule);
    auto const idle = Idle(schedule);
    EXPECT_TRUE(Post(schedule, "task"));
    EXPECT_FALSE(schedule.Sleep(*busy));
    EXPECT_FALSE(busy->HasTurn());
    EXPECT_TRUE(idle->HasTurn());
}

TEST_F(ScheduleTest, GivesTheTurnOfASleepingJobToANewThreadWhenNoneIsIdle) {
    Schedule schedule(1);
    auto const busy = Busy(schedule);
    EXPECT_TRUE(Post(schedule, "task"));
    EXPECT_TRUE(schedule.Sleep(*busy));
    EXPECT_EQ(schedule.GetThreadCount(), 2U);
    TestWorker started({}, true);
    EXPECT_TRUE(schedule.FindTask(started));
}

TEST_F(ScheduleTest, GivesTurnsToTheLineAndTheQueueAlternately) {
    Schedule schedule(1);
    auto const first = Asleep(schedule);
    auto const second = Asleep(schedule);
    auto const busy = Busy(schedule);
    for (auto const* name : {"a", "b"}) EXPECT_TRUE(Post(schedule, name));
    for (auto* const each : {first.get(), second.get()}) schedule.Wake(*each);
    EXPECT_FALSE(schedule.FindTask(*busy)) << "the line is first";
    schedule.AddIdle(*busy);
    ASSERT_TRUE(first->HasTurn());
    ASSERT_TRUE(schedule.FindTask(*first));
    first->Run();
    EXPECT_FALSE(schedule.FindTask(*first));
    schedule.AddIdle(*first);
    ASSERT_TRUE(second->HasTurn());
    ASSERT_TRUE(schedule.FindTask(*second));
    second->Run();
    EXPECT_THAT(ran, ElementsAre("a", "b"));
}

TEST_F(ScheduleTest, KeepsAWakeThatComesBeforeTheSleep) {
    Schedule schedule(1);
    auto const busy = Busy(schedule);
    EXPECT_FALSE(Schedule::ConsumeWake(*busy));
    schedule.Wake(*busy);
    EXPECT_TRUE(Schedule::ConsumeWake(*busy));
    EXPECT_FALSE(Schedule::ConsumeWake(*busy));
}

TEST_F(ScheduleTest, GivesOneTurnToAJobThatIsWokenTwice) {
    Schedule schedule(1);
    auto const asleep = Asleep(schedule);
    auto const busy = Busy(schedule);
    for (int i = 0; i < 2; ++i) schedule.Wake(*asleep);
    EXPECT_FALSE(asleep->HasTurn());
    schedule.AddIdle(*busy);
    EXPECT_EQ(asleep->notices, 1);
    EXPECT_FALSE(schedule.Sleep(*asleep));
    EXPECT_FALSE(asleep->HasTurn()) << "it is still in the line";
}

TEST_F(ScheduleTest, GivesTheTurnOfAThreadThatCannotBeStartedToTheLine) {
    Schedule schedule(1);
    auto const asleep = Asleep(schedule);
    auto task = MakeTask("task");
    EXPECT_FALSE(schedule.Post(task));
    schedule.Wake(*asleep);
    schedule.RemoveThread(true);
    EXPECT_TRUE(asleep->HasTurn());
    EXPECT_TRUE(schedule.Queue(task)) << "the job that goes on looks at the queue when it ends";
    EXPECT_TRUE(schedule.FindTask(*asleep));
}

TEST_F(ScheduleTest, GivesATaskWhoseThreadCannotBeStartedToAWorkerThatBecameIdle) {
    Schedule schedule(2);
    auto const busy = Busy(schedule);
    auto task = MakeTask("task");
    EXPECT_FALSE(schedule.Post(task));
    schedule.AddIdle(*busy);
    schedule.RemoveThread(true);
    EXPECT_TRUE(schedule.Queue(task));
    EXPECT_TRUE(busy->HasTurn());
}

TEST_F(ScheduleTest, RemovesTheQueueOnlyWhenNothingWouldRunIt) {
    Schedule schedule(1);
    auto const busy = Busy(schedule);
    EXPECT_TRUE(Post(schedule, "task"));
    EXPECT_THAT(schedule.RemoveStranded(), IsEmpty());
    ASSERT_TRUE(schedule.Sleep(*busy));
    schedule.RemoveThread(true);
    EXPECT_EQ(schedule.RemoveStranded().size(), 1U);
    auto late = MakeTask("late");
    EXPECT_FALSE(schedule.Queue(late));
    EXPECT_TRUE(late.job);
}

TEST_F(ScheduleTest, NotifiesIdleWorkers) {
    Schedule schedule(1);
    auto const busy = Busy(schedule);
    auto const idle = Idle(schedule);
    schedule.NotifyIdle();
    EXPECT_EQ(idle->notices, 1);
    EXPECT_EQ(busy->notices, 0);
    schedule.Retire(*idle);
    EXPECT_EQ(schedule.GetIdleCount(), 0U);
    EXPECT_EQ(schedule.GetThreadCount(), 1U);
}

/// A pool whose threads the test steps in a random order. A job sleeps now and then; a thread fails to start now and
/// then.
class RandomPool {
public:
    RandomPool(std::size_t processors, unsigned seed) : processors(processors), schedule(processors), random(seed) {}

    /// Posts the tasks of this many numbers and steps until all have run.
    void Run(std::size_t count) {
        std::size_t posted = 0;
        for (int steps = 0; posted < count || ran.size() + dropped < count; ++steps) {
            ASSERT_LT(steps, MostSteps) << "tasks are stuck";
            if (posted < count && IsOneIn(3))
                Post(posted++);
            else
                Step();
            ASSERT_LE(std::ranges::count_if(workers, [](auto const& each) { return each->HasTurn(); }),
                      static_cast<std::ptrdiff_t>(processors));
        }
    }

    /// Whether every turn is free when nothing is left to do.
    bool HasAllTurns() {
        auto const hasTurn = [](auto const& each) { return each->HasTurn(); };
        for (int steps = 0; std::ranges::any_of(workers, hasTurn) && steps < MostSteps; ++steps) Step();
        std::vector<Task> tasks(processors + 1);
        std::size_t taken = 0;
        for (auto& task : tasks) {
            task.job = [] {};
            auto const idle = schedule.GetIdleCount();
            if (!schedule.Post(task) || schedule.GetIdleCount() < idle) ++taken;
        }
        return taken == processors;
    }

    std::vector<std::size_t> ran;
    std::size_t dropped = 0;

private:
    static constexpr int MostSteps = 100'000; ///< only a schedule that fails needs as many

    bool IsOneIn(unsigned times) { return random() % times == 0; }

    void Post(std::size_t number) {
        Task task{[this, number] { ran.push_back(number); }, nullptr};
        if (schedule.Post(task) || Start(task)) return;
        if (!schedule.Queue(task)) dropped += 1 + schedule.RemoveStranded().size();
    }

    /// Starts a worker that has a turn, unless that fails.
    bool Start(Task& task) {
        if (IsOneIn(4)) {
            schedule.RemoveThread(true);
            return false;
        }
        workers.push_back(std::make_unique<TestWorker>(std::move(task), true));
        return true;
    }

    /// Lets one worker do what its thread would do next.
    void Step() {
        if (workers.empty()) return;
        auto& worker = *workers[random() % workers.size()];
        if (!worker.HasTurn()) {
            if (std::erase(asleep, &worker) > 0) schedule.Wake(worker);
        } else if (IsOneIn(3) && !worker.task.job) {
            Sleep(worker);
        } else if (schedule.FindTask(worker)) {
            worker.Run();
        } else {
            schedule.AddIdle(worker);
        }
    }

    void Sleep(TestWorker& worker) {
        if (IsOneIn(4)) schedule.Wake(worker);
        if (Schedule::ConsumeWake(worker)) return;
        asleep.push_back(&worker);
        Task none;
        if (schedule.Sleep(worker) && !Start(none)) dropped += schedule.RemoveStranded().size();
    }

    std::size_t const processors;
    Schedule schedule;
    std::minstd_rand random;
    std::vector<std::unique_ptr<TestWorker>> workers;
    std::vector<TestWorker*> asleep; ///< whose jobs sleep and have not been woken
};

class ScheduleInAnyOrder : public testing::TestWithParam<std::size_t> {};

TEST_P(ScheduleInAnyOrder, RunsEveryTaskOnceAndLosesNoTurn) {
    for (unsigned seed = 1; seed <= 200; ++seed) {
        RandomPool pool(GetParam(), seed);
        pool.Run(100);
        std::ranges::sort(pool.ran);
        EXPECT_EQ(std::ranges::adjacent_find(pool.ran), pool.ran.end()) << "a task ran twice, seed " << seed;
        EXPECT_EQ(pool.ran.size() + pool.dropped, 100U) << seed;
        EXPECT_TRUE(pool.HasAllTurns()) << seed;
    }
}

INSTANTIATE_TEST_SUITE_P(Processors, ScheduleInAnyOrder, testing::Values(1, 2, 4));

} // namespace
} // namespace zarn::job
