#pragma once

#include <zarn/job/end_notice.h>

#include <atomic>
#include <cstddef>
#include <functional>
#include <list>
#include <utility>
#include <vector>

namespace zarn::job {

/// A job of a pool, and what to call when it has ended.
struct Task {
    std::function<void()> job;
    EndNotice::Function ended;
};

/// Decides which workers of a pool may run. A worker needs a turn to run, and there is one turn per processor. A job
/// that sleeps gives its turn up. A woken job waits in the line, a new task in the queue; free turns go to the two
/// alternately. Holds state only: starts no thread and never blocks. Thread: one at a time, except for HasTurn.
class Schedule {
public:
    /// A thread of the pool.
    class Worker {
    public:
        /// hasTurn  whether a turn has been taken for it
        Worker(Task task, bool hasTurn) : task(std::move(task)), hasTurn(hasTurn) {}

        Worker(Worker const&) = delete;
        Worker& operator=(Worker const&) = delete;

        /// Whether it may run. Thread: any.
        bool HasTurn() const noexcept { return hasTurn; }

        Task task; ///< to be run; empty while it is idle

    protected:
        ~Worker() = default;

    private:
        friend Schedule;

        /// Wakes the worker's thread: it has a turn, or must check whether to end. Must not call the schedule.
        virtual void Notify() noexcept = 0;

        std::atomic<bool> hasTurn;
        bool isWoken = false;     ///< before its job slept; see ConsumeWake
        bool isInLine = false;    ///< of the jobs that go on
        Worker* behind = nullptr; ///< in that line
    };

    /// processors  the number of turns; at least 1
    explicit Schedule(std::size_t processors) : processors(processors) {}

    Schedule(Schedule const&) = delete;
    Schedule& operator=(Schedule const&) = delete;

    /// Counts a thread that is about to be started. Throws std::bad_alloc.
    void AddThread();

    /// Uncounts a thread that could not be started.
    /// hasTurn  whether a turn was taken for it, which is given back
    void RemoveThread(bool hasTurn);

    /// The number of threads.
    std::size_t GetThreadCount() const noexcept { return threads; }

    /// The number of workers that wait for a task.
    std::size_t GetIdleCount() const noexcept { return idle.size(); }

    /// Gives a task to the worker that became idle last, or queues it when no turn is free. Returns false when a new
    /// thread has to run it: the thread is counted, a turn is taken for it, and the task is still the caller's.
    /// Throws std::bad_alloc, and then nothing has changed.
    bool Post(Task& task);

    /// Queues a task whose thread could not be started. Returns false, with the task still the caller's, when nothing
    /// would ever run it. Throws std::bad_alloc.
    bool Queue(Task& task);

    /// Removes the tasks of the queue if nothing would ever run them.
    std::list<Task> RemoveStranded() noexcept;

    /// Whether the worker has a turn and a task; it takes one out of the queue unless a job in the line comes first.
    bool FindTask(Worker& worker);

    /// Marks the worker as idle and takes its turn back, if it has one.
    void AddIdle(Worker& worker);

    /// The thread of an idle worker ends.
    void Retire(Worker& worker);

    /// Notifies every idle worker.
    void NotifyIdle() const noexcept;

    /// Returns true, and forgets the wake, if the job was woken before it could sleep. It must not sleep then.
    static bool ConsumeWake(Worker& worker) noexcept;

    /// Takes the turn from a worker whose job goes to sleep, and passes it on. Returns true when the caller must start
    /// a thread to run a queued task; that thread is counted and has the turn. Throws std::bad_alloc, with the turn
    /// kept.
    bool Sleep(Worker& worker);

    /// Puts a sleeping job in the line for a turn. If the job does not sleep yet, records the wake for ConsumeWake.
    void Wake(Worker& worker);

private:
    bool CanRunQueued() const noexcept { return running > 0 || !idle.empty(); }

    void GiveToIdle(Task& task);
    bool TakeQueued(Task& task);
    bool ResumeFirstInLine();
    void GrantFreeTurns();

    std::size_t const processors;
    std::size_t threads = 0; ///< started or being started
    /// Turns that are taken. None is free while a job is in the line, nor while the queue has a task and there is an
    /// idle worker for it.
    std::size_t running = 0;
    std::vector<Worker*> idle;     ///< the one that became idle last is at the end; has room for all threads
    std::list<Task> queue;         ///< tasks that wait for a turn
    Worker* firstInLine = nullptr; ///< the workers whose jobs have slept and want a turn
    Worker* lastInLine = nullptr;
    bool queueIsNext = false; ///< whether the queue comes before that line
};

} // namespace zarn::job
