#include "job/turn.h"

#include <zarn/job/dynamic_thread_pool.h>
#include <zarn/job/end_notice.h>
#include <zarn/logging/limited_logger.h>

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <list>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace zarn::job {

namespace {

/// Room for the deepest SOAP document, whatever limit the process was started with. Only touched pages cost memory, so
/// that a waiting thread stays cheap. Sanitizers make every frame larger.
#ifdef ZARN_SANITIZED
constexpr std::size_t StackSize = std::size_t{16} << 20U;
#else
constexpr std::size_t StackSize = std::size_t{2} << 20U;
#endif

/// How long an idle thread looks for the next task before it sleeps: to wake it on another processor takes longer than
/// many a caller needs to post again.
constexpr std::chrono::microseconds Lookout{30};

/// Longer waits would overflow the clock.
constexpr std::chrono::seconds MaximumIdle = std::chrono::hours(24 * 365);

void* RunThread(void* argument) {
    std::unique_ptr<std::function<void()>> const function(static_cast<std::function<void()>*>(argument));
    pthread_setname_np(pthread_self(), "zarn.job"); // for debuggers and top; a failure changes nothing
    (*function)();
    return nullptr;
}

/// Starts a thread, which has to be joined by its own pthread_self(): only the thread that starts a std::thread could
/// join it. Throws std::system_error when the thread cannot be started.
/// function  must not throw
void StartThread(std::function<void()> function) {
    auto argument = std::make_unique<std::function<void()>>(std::move(function));
    pthread_attr_t attributes{};
    pthread_attr_init(&attributes); // neither this nor the next line fails: the size is valid
    pthread_attr_setstacksize(&attributes, StackSize);
    pthread_t unused{};
    int const error = pthread_create(&unused, &attributes, &RunThread, argument.get());
    pthread_attr_destroy(&attributes);
    if (error != 0) throw std::system_error(error, std::generic_category(), "Failed to start a thread");
    static_cast<void>(argument.release()); // the thread has it
}

thread_local Turn* CurrentTurn = nullptr;

/// The pool that the current thread belongs to.
thread_local void const* CurrentPool = nullptr;

} // namespace

Turn* Turn::GetCurrent() noexcept { return CurrentTurn; }

class DynamicThreadPool::Impl {
public:
    Impl(unsigned minimum, std::chrono::seconds idle, unsigned processors);

    ~Impl() { Stop(); }

    Impl(Impl const&) = delete;
    Impl& operator=(Impl const&) = delete;

    void Post(std::function<void()> job);
    void Stop();
    std::size_t GetThreadCount() const;
    std::size_t GetIdleCount() const;

private:
    /// A job, and what to call when it has ended.
    struct Task {
        std::function<void()> job;
        EndNotice::Function ended;
    };

    using Queue = std::list<Task>;

    /// A thread of the pool. It has a condition variable of its own, so that the pool chooses which thread wakes up.
    struct Worker final : Turn {
        explicit Worker(Impl& pool, Task task) : pool(pool), task(std::move(task)) {}

        void SleepUntil(std::chrono::steady_clock::time_point deadline) override { pool.SleepUntil(*this, deadline); }

        void Wake() override { pool.Wake(*this); }

        Impl& pool;
        std::condition_variable wake;
        Task task;                         ///< to be run
        std::atomic<bool> hasTask = false; ///< for a look without the lock
        bool isAsleep = false;             ///< its job has given its turn back
        bool isWoken = false;              ///< before its job slept
        bool isInLine = false;             ///< of the jobs that go on
        Worker* behind = nullptr;          ///< in that line
    };

    void Take(Task task);
    bool GiveToIdle(Task& task);
    bool TakeQueued(Task& task);
    bool LetGoOn();
    void EnterLine(Worker& worker);
    void PassTurns();
    bool HasFuture() const;
    void Start(Task& first, bool hasTurn);
    void StartForQueue() noexcept;
    void Drop(Queue dropped) noexcept;
    void Work(Task first, bool hasTurn);
    void Run(Task&& taken) noexcept;
    bool WaitForTask(std::unique_lock<std::mutex>& lock, Worker& worker);
    static void LookOut(std::unique_lock<std::mutex>& lock, Worker& worker);
    void SleepUntil(Worker& worker, std::chrono::steady_clock::time_point deadline);
    void Wake(Worker& worker);

    std::size_t const minimum;
    std::chrono::seconds const idle;
    std::size_t const processors;
    logging::LimitedLogger failures{"zarn.job.DynamicThreadPool"};
    std::mutex stopping; ///< lets the second of two Stops wait for the first; taken before `mutex`

    mutable std::mutex mutex; ///< guards the members below and what the workers wait for
    std::condition_variable ended;
    std::vector<Worker*> waiting;  ///< for a task; the one that became idle last is at the end
    Queue queue;                   ///< tasks that wait for a turn
    Worker* firstToGoOn = nullptr; ///< the line of workers whose jobs have slept and want a turn
    Worker* lastToGoOn = nullptr;
    bool queueIsNext = false; ///< whether the queue comes before that line
    /// Turns that are taken. None is free while a worker is in the line, nor while the queue has a task and there is an
    /// idle worker for it.
    std::size_t running = 0;
    std::size_t threads = 0;       ///< started or being started, and not yet ending
    std::optional<pthread_t> last; ///< the last thread that went; it joins the one before it
    bool stopped = false;
};

DynamicThreadPool::Impl::Impl(unsigned minimum, std::chrono::seconds idle, unsigned processors)
    : minimum(minimum),
      idle(std::clamp(idle, std::chrono::seconds(0), MaximumIdle)),
      processors(std::max(processors, 1U)) {
    try {
        Task none;
        for (unsigned started = 0; started < minimum; ++started) {
            {
                std::lock_guard const lock(mutex);
                waiting.reserve(++threads);
            }
            Start(none, false);
        }
    } catch (...) {
        Stop();
        throw;
    }
}

void DynamicThreadPool::Impl::Post(std::function<void()> job) {
    if (!job) throw std::invalid_argument("DynamicThreadPool::Post: the job is an empty function");
    auto* const notice = EndNotice::GetInnermost();
    Take({std::move(job), notice == nullptr ? nullptr : notice->GetFunction()});
    if (notice != nullptr) notice->CountJob();
}

void DynamicThreadPool::Impl::Take(Task task) {
    std::unique_lock lock(mutex);
    if (stopped) throw std::runtime_error("DynamicThreadPool::Post: the pool has been stopped");
    if (running >= processors) {
        queue.push_back(std::move(task));
        return;
    }
    waiting.reserve(threads + 1); // here, so that a worker can always enter itself
    ++running;
    if (GiveToIdle(task)) return;
    ++threads;
    lock.unlock();
    try {
        Start(task, true);
    } catch (...) {
        Queue dropped;
        lock.lock();
        if (HasFuture()) {
            queue.push_back(std::move(task));
            PassTurns();
            return;
        }
        std::swap(dropped, queue); // behind the thread that could not be started
        lock.unlock();
        Drop(std::move(dropped));
        throw;
    }
}

/// Hands a task, and the turn that has been taken for it, to the worker that became idle last. Call with the lock.
bool DynamicThreadPool::Impl::GiveToIdle(Task& task) {
    if (waiting.empty()) return false;
    auto* const worker = waiting.back();
    waiting.pop_back();
    worker->task = std::move(task);
    worker->hasTask = true;
    worker->wake.notify_one();
    return true;
}

/// Takes a task out of the queue, unless a job that goes on comes first. Call with the lock.
bool DynamicThreadPool::Impl::TakeQueued(Task& task) {
    if (queue.empty() || (firstToGoOn != nullptr && !queueIsNext)) return false;
    queueIsNext = false;
    task = std::move(queue.front());
    queue.pop_front();
    return true;
}

/// Gives a turn to the job that has been in the line longest. Call with the lock.
bool DynamicThreadPool::Impl::LetGoOn() {
    if (firstToGoOn == nullptr) return false;
    queueIsNext = true;
    auto* const worker = std::exchange(firstToGoOn, firstToGoOn->behind);
    worker->isInLine = false;
    worker->isAsleep = false;
    worker->wake.notify_one();
    return true;
}

/// Adds a worker whose job wants to go on to the line, if it is not in it. Call with the lock.
void DynamicThreadPool::Impl::EnterLine(Worker& worker) {
    if (worker.isInLine) return;
    worker.isInLine = true;
    worker.behind = nullptr;
    (firstToGoOn == nullptr ? firstToGoOn : lastToGoOn->behind) = &worker;
    lastToGoOn = &worker;
    PassTurns();
}

/// Gives the free turns to jobs that go on, and to idle workers for tasks of the queue. Call with the lock.
void DynamicThreadPool::Impl::PassTurns() {
    for (Task task; running < processors; ++running) {
        if (!waiting.empty() && TakeQueued(task))
            GiveToIdle(task);
        else if (!LetGoOn())
            return;
    }
}

/// Whether there is a thread that will look at the queue. Call with the lock.
bool DynamicThreadPool::Impl::HasFuture() const { return running > 0 || !waiting.empty(); }

/// Starts a thread that has been counted already, outside the lock since this takes a while. When it fails, the thread
/// is no longer counted and the task is still the caller's.
/// hasTurn  whether a turn has been taken for it, which is given back when it fails
void DynamicThreadPool::Impl::Start(Task& first, bool hasTurn) {
    try {
        auto const shared = std::make_shared<Task>(std::move(first));
        try {
            StartThread([this, shared, hasTurn] { Work(std::move(*shared), hasTurn); });
        } catch (...) {
            first = std::move(*shared);
            throw;
        }
    } catch (...) {
        std::lock_guard const lock(mutex);
        if (hasTurn) --running;
        --threads;
        PassTurns();
        ended.notify_all();
        throw;
    }
}

/// Starts a thread, for which a turn has been taken, that takes its first task out of the queue.
void DynamicThreadPool::Impl::StartForQueue() noexcept try {
    Task none;
    Start(none, true);

} catch (std::exception const& error) {

    failures.Log(logging::Level::Error, "Cannot start a thread for queued jobs: %0%", error.what());
    Queue dropped;
    {
        std::lock_guard const lock(mutex);
        if (!HasFuture()) std::swap(dropped, queue);
    }
    Drop(std::move(dropped));
}

void DynamicThreadPool::Impl::Drop(Queue dropped) noexcept {
    if (dropped.empty()) return;
    failures.Log(logging::Level::Error, "Dropped %0% queued jobs: no thread can run them", dropped.size());
    for (auto& task : dropped) {
        task.job = nullptr;
        if (task.ended) task.ended(End::Dropped);
    }
}

void DynamicThreadPool::Impl::Work(Task first, bool hasTurn) {
    Worker worker(*this, std::move(first));
    CurrentTurn = &worker;
    CurrentPool = this;
    std::unique_lock lock(mutex);
    for (;;) {
        if (hasTurn && (worker.task.job || TakeQueued(worker.task))) {
            lock.unlock();
            Run(std::move(worker.task));
            lock.lock();
            continue;
        }
        if (hasTurn) --running;
        hasTurn = WaitForTask(lock, worker);
        if (!hasTurn) break;
    }
    auto const previous = std::exchange(last, pthread_self());
    --threads;
    ended.notify_all();
    lock.unlock();
    if (previous) pthread_join(*previous, nullptr);
}

/// Runs the job, destroys it and tells of its end. This is the boundary for what jobs throw.
void DynamicThreadPool::Impl::Run(Task&& taken) noexcept {
    auto const tellEnd = std::exchange(taken.ended, nullptr);
    {
        auto const job = std::exchange(taken.job, nullptr);
        try {
            job();
        } catch (std::exception const& exception) {
            failures.Log(logging::Level::Error, "A job threw: %0%", exception.what());
        } catch (...) {
            failures.Log(logging::Level::Error, "A job threw: an exception of unknown type");
        }
    }
    if (tellEnd) tellEnd(End::Ran);
}

/// Waits with the lock, without a turn, until there is a task for the worker, and with it a turn; false when its thread
/// has to go.
bool DynamicThreadPool::Impl::WaitForTask(std::unique_lock<std::mutex>& lock, Worker& worker) {
    auto const deadline = std::chrono::steady_clock::now() + idle;
    waiting.push_back(&worker);
    PassTurns();
    if (processors > 1 && !worker.task.job && !stopped) LookOut(lock, worker);
    bool late = false;
    while (!worker.task.job && !stopped && !(late && threads > minimum)) {
        if (threads <= minimum)
            worker.wake.wait(lock);
        else
            late = worker.wake.wait_until(lock, deadline) == std::cv_status::timeout;
    }
    if (worker.task.job) return true;
    std::erase(waiting, &worker);
    return false;
}

/// Waits a moment, without the lock, for a task; whatever else wants to run goes first.
void DynamicThreadPool::Impl::LookOut(std::unique_lock<std::mutex>& lock, Worker& worker) {
    worker.hasTask = false;
    lock.unlock();
    auto const end = std::chrono::steady_clock::now() + Lookout;
    while (!worker.hasTask && std::chrono::steady_clock::now() < end) std::this_thread::yield();
    lock.lock();
}

void DynamicThreadPool::Impl::SleepUntil(Worker& worker, std::chrono::steady_clock::time_point deadline) {
    std::unique_lock lock(mutex);
    if (std::exchange(worker.isWoken, false)) return;
    waiting.reserve(threads + 1);
    worker.isAsleep = true;
    // When it is the queue's turn and no thread is idle, a new one gets the turn: else jobs that go on and sleep again
    // would hand it to each other.
    if (!queue.empty() && waiting.empty() && (queueIsNext || firstToGoOn == nullptr)) {
        ++threads;
        lock.unlock();
        StartForQueue();
        lock.lock();
    } else {
        --running;
        PassTurns();
    }
    auto const hasTurn = [&worker] { return !worker.isAsleep; };
    if (worker.wake.wait_until(lock, deadline, hasTurn)) return;
    EnterLine(worker);
    worker.wake.wait(lock, hasTurn);
}

void DynamicThreadPool::Impl::Wake(Worker& worker) {
    std::lock_guard const lock(mutex);
    if (worker.isAsleep)
        EnterLine(worker);
    else
        worker.isWoken = true;
}

void DynamicThreadPool::Impl::Stop() {
    if (CurrentPool == this) throw std::logic_error("DynamicThreadPool::Stop: called by a job of the same pool");
    std::lock_guard const one(stopping);
    std::unique_lock lock(mutex);
    stopped = true;
    for (auto* const worker : waiting) worker->wake.notify_one();
    ended.wait(lock, [this] { return threads == 0; });
    auto const thread = std::exchange(last, std::nullopt);
    lock.unlock();
    if (thread) pthread_join(*thread, nullptr);
}

std::size_t DynamicThreadPool::Impl::GetThreadCount() const {
    std::lock_guard const lock(mutex);
    return threads;
}

std::size_t DynamicThreadPool::Impl::GetIdleCount() const {
    std::lock_guard const lock(mutex);
    return waiting.size();
}

DynamicThreadPool::DynamicThreadPool(unsigned minimum, std::chrono::seconds idle, unsigned processors)
    : impl(std::make_unique<Impl>(minimum, idle, processors)) {}

DynamicThreadPool::~DynamicThreadPool() = default;

void DynamicThreadPool::Post(std::function<void()> job) { impl->Post(std::move(job)); }

void DynamicThreadPool::Stop() { impl->Stop(); }

std::size_t DynamicThreadPool::GetThreadCount() const { return impl->GetThreadCount(); }

std::size_t DynamicThreadPool::GetIdleCount() const { return impl->GetIdleCount(); }

} // namespace zarn::job
