#include "job/turn.h"

#include <zarn/job/dynamic_thread_pool.h>
#include <zarn/job/end_notice.h>
#include <zarn/logging/limited_logger.h>

#include <pthread.h>

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <system_error>
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
    using Function = std::function<void()>;

    Impl(unsigned minimum, std::chrono::seconds idle, unsigned processors);

    ~Impl() { Stop(); }

    Impl(Impl const&) = delete;
    Impl& operator=(Impl const&) = delete;

    void Post(Function job);
    void Stop();
    std::size_t GetThreadCount() const;
    std::size_t GetIdleCount() const;

private:
    /// A job, and what to call when it has ended.
    struct Task {
        Function job;
        Function ended;
    };

    /// A thread of the pool. It has a condition variable of its own, so that the pool chooses which thread wakes up.
    struct Worker final : Turn {
        explicit Worker(Impl& pool, Task task) : pool(pool), task(std::move(task)) {}

        void SleepUntil(std::chrono::steady_clock::time_point deadline) override { pool.SleepUntil(*this, deadline); }

        void Wake() override { pool.Wake(*this); }

        Impl& pool;
        std::condition_variable wake;
        Task task;                ///< to be run
        bool hasTurn = true;      ///< unless it is idle, or its job sleeps or is in the line
        bool isWoken = false;     ///< before its job slept
        bool isInLine = false;    ///< of the jobs that go on
        Worker* behind = nullptr; ///< in that line
    };

    bool GiveToIdle(Task& task);
    bool TakeQueued(Task& task);
    bool LetGoOn();
    void EnterLine(Worker& worker);
    void PassTurns();
    void Start(Task& first);
    void StartForQueue() noexcept;
    void DropQueue();
    void Work(Task first);
    void Run(Task&& taken) noexcept;
    bool WaitForTask(std::unique_lock<std::mutex>& lock, Worker& worker);
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
    std::deque<Task> queue;        ///< tasks that wait for a turn
    Worker* firstToGoOn = nullptr; ///< the line of workers whose jobs have waited and wait for a turn
    Worker* lastToGoOn = nullptr;
    bool queueIsNext = false;      ///< whether the queue comes before that line
    std::size_t running = 0;       ///< turns that are taken
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
            std::unique_lock lock(mutex);
            waiting.reserve(++threads);
            ++running;
            lock.unlock();
            Start(none);
        }
    } catch (...) {
        Stop();
        throw;
    }
}

void DynamicThreadPool::Impl::Post(Function job) {
    if (!job) throw std::invalid_argument("DynamicThreadPool::Post: the job is an empty function");
    Task task{std::move(job), EndNotice::TakeForJob()};
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
        Start(task);
    } catch (std::system_error const&) {
        lock.lock();
        if (running == 0 && waiting.empty()) throw; // there would never be a turn for it
        queue.push_back(std::move(task));
        PassTurns();
    }
}

/// Hands a task, and the turn that has been taken for it, to the worker that became idle last. Call with the lock.
bool DynamicThreadPool::Impl::GiveToIdle(Task& task) {
    if (waiting.empty()) return false;
    auto* const worker = waiting.back();
    waiting.pop_back();
    worker->task = std::move(task);
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

/// Gives a turn to the job that has waited longest for one. Call with the lock.
bool DynamicThreadPool::Impl::LetGoOn() {
    if (firstToGoOn == nullptr) return false;
    queueIsNext = true;
    auto* const worker = std::exchange(firstToGoOn, firstToGoOn->behind);
    worker->isInLine = false;
    worker->hasTurn = true;
    worker->wake.notify_one();
    return true;
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

/// Starts a thread that has been counted already, and so has its turn, outside the lock since this takes a while. When
/// it fails, both are given back and the task is still the caller's.
void DynamicThreadPool::Impl::Start(Task& first) {
    try {
        auto const shared = std::make_shared<Task>(std::move(first));
        try {
            StartThread([this, shared] { Work(std::move(*shared)); });
        } catch (...) {
            first = std::move(*shared);
            throw;
        }
    } catch (...) {
        std::lock_guard const lock(mutex);
        --running;
        --threads;
        ended.notify_all();
        throw;
    }
}

/// Starts a thread that takes its first task out of the queue.
void DynamicThreadPool::Impl::StartForQueue() noexcept try {
    Task none;
    Start(none);

} catch (std::exception const& error) {

    failures.Log(logging::Level::Error, "No thread for jobs that queue: %0%", error.what());
    DropQueue();
}

/// Drops the queue if nothing is left that would ever take a task out of it.
void DynamicThreadPool::Impl::DropQueue() {
    std::deque<Task> dropped;
    {
        std::lock_guard const lock(mutex);
        PassTurns();
        if (running == 0) std::swap(dropped, queue);
    }
    for (auto& task : dropped) {
        task.job = nullptr;
        if (task.ended) task.ended();
    }
}

void DynamicThreadPool::Impl::Work(Task first) {
    Worker worker(*this, std::move(first));
    CurrentTurn = &worker;
    CurrentPool = this;
    std::unique_lock lock(mutex, std::defer_lock);
    do {
        if (lock.owns_lock()) lock.unlock();
        if (worker.task.job) Run(std::move(worker.task));
        lock.lock();
    } while (TakeQueued(worker.task) || WaitForTask(lock, worker));
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
    if (tellEnd) tellEnd();
}

/// Gives the turn of the worker back and waits with the lock until there is a task for it; false when its thread has to
/// go.
bool DynamicThreadPool::Impl::WaitForTask(std::unique_lock<std::mutex>& lock, Worker& worker) {
    auto const deadline = std::chrono::steady_clock::now() + idle;
    waiting.push_back(&worker);
    --running;
    PassTurns();
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

void DynamicThreadPool::Impl::SleepUntil(Worker& worker, std::chrono::steady_clock::time_point deadline) {
    std::unique_lock lock(mutex);
    if (std::exchange(worker.isWoken, false)) return;
    waiting.reserve(threads + 1);
    worker.hasTurn = false;
    --running;
    PassTurns();
    if (!queue.empty() && running < processors) {
        ++running;
        ++threads;
        lock.unlock();
        StartForQueue();
        lock.lock();
    }
    auto const hasTurn = [&worker] { return worker.hasTurn; };
    if (worker.wake.wait_until(lock, deadline, hasTurn)) return;
    EnterLine(worker);
    worker.wake.wait(lock, hasTurn);
}

void DynamicThreadPool::Impl::Wake(Worker& worker) {
    std::lock_guard const lock(mutex);
    if (worker.hasTurn)
        worker.isWoken = true;
    else
        EnterLine(worker);
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
