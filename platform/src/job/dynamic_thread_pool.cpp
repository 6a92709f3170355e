#include "job/schedule.h"
#include "job/turn.h"

#include <zarn/job/dynamic_thread_pool.h>
#include <zarn/job/end_notice.h>
#include <zarn/logging/limited_logger.h>

#include <pthread.h>

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <list>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

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
    /// A thread of the pool. It has a condition variable of its own, so that the schedule chooses which one wakes up.
    struct Worker final : Schedule::Worker, Turn {
        Worker(Impl& pool, Task task, bool hasTurn) : Schedule::Worker(std::move(task), hasTurn), pool(pool) {}

        void Notify() noexcept override { wake.notify_one(); }

        void SleepUntil(std::chrono::steady_clock::time_point deadline) override { pool.SleepUntil(*this, deadline); }

        void Wake() override { pool.Wake(*this); }

        Impl& pool;
        std::condition_variable wake;
    };

    void Post(Task task);
    void Start(Task& first, bool hasTurn);
    void StartForQueue() noexcept;
    void Drop(std::list<Task> dropped) noexcept;
    void Work(Task first, bool hasTurn);
    void Run(Task&& taken) noexcept;
    bool WaitForTask(std::unique_lock<std::mutex>& lock, Worker& worker);
    void LookOut(std::unique_lock<std::mutex>& lock, Worker const& worker) const;
    void SleepUntil(Worker& worker, std::chrono::steady_clock::time_point deadline);
    void Wake(Worker& worker);

    std::size_t const minimum;
    std::chrono::seconds const idle;
    std::chrono::microseconds const lookout;
    logging::LimitedLogger failures{"zarn.job.DynamicThreadPool"};
    std::mutex stopping; ///< lets the second of two Stops wait for the first; taken before `mutex`

    mutable std::mutex mutex; ///< guards the members below
    Schedule schedule;
    std::condition_variable ended;
    std::optional<pthread_t> last; ///< the last thread that went; it joins the one before it
    bool stopped = false;
};

DynamicThreadPool::Impl::Impl(unsigned minimum, std::chrono::seconds idle, unsigned processors)
    : minimum(minimum),
      idle(std::clamp(idle, std::chrono::seconds(0), MaximumIdle)),
      lookout(processors > 1 ? Lookout : std::chrono::microseconds(0)),
      schedule(std::max(processors, 1U)) {
    try {
        Task none;
        for (unsigned started = 0; started < minimum; ++started) {
            {
                std::lock_guard const lock(mutex);
                schedule.AddThread();
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
    Post(Task{std::move(job), notice == nullptr ? nullptr : notice->GetFunction()});
    if (notice != nullptr) notice->CountJob();
}

void DynamicThreadPool::Impl::Post(Task task) {
    std::unique_lock lock(mutex);
    if (stopped) throw std::runtime_error("DynamicThreadPool::Post: the pool has been stopped");
    if (schedule.Post(task)) return;
    lock.unlock();
    try {
        Start(task, true);
    } catch (...) {
        lock.lock();
        if (schedule.Queue(task)) return;
        auto dropped = schedule.RemoveStranded();
        lock.unlock();
        Drop(std::move(dropped));
        throw;
    }
}

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
        schedule.RemoveThread(hasTurn);
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
    std::unique_lock lock(mutex);
    auto dropped = schedule.RemoveStranded();
    lock.unlock();
    Drop(std::move(dropped));
}

void DynamicThreadPool::Impl::Drop(std::list<Task> dropped) noexcept {
    if (dropped.empty()) return;
    failures.Log(logging::Level::Error, "Dropped %0% queued jobs: no thread can run them", dropped.size());
    for (auto& task : dropped) {
        task.job = nullptr;
        if (task.ended) task.ended(End::Dropped);
    }
}

void DynamicThreadPool::Impl::Work(Task first, bool hasTurn) {
    Worker worker(*this, std::move(first), hasTurn);
    CurrentTurn = &worker;
    CurrentPool = this;
    std::unique_lock lock(mutex);
    while (schedule.FindTask(worker) || WaitForTask(lock, worker)) {
        lock.unlock();
        Run(std::move(worker.task));
        lock.lock();
    }
    schedule.Retire(worker);
    auto const previous = std::exchange(last, pthread_self());
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
    schedule.AddIdle(worker);
    LookOut(lock, worker);
    bool late = false;
    while (!worker.HasTurn() && !stopped && !(late && schedule.GetThreadCount() > minimum)) {
        if (schedule.GetThreadCount() <= minimum)
            worker.wake.wait(lock);
        else
            late = worker.wake.wait_until(lock, deadline) == std::cv_status::timeout;
    }
    return worker.HasTurn();
}

/// Waits a moment, without the lock, for a task; whatever else wants to run goes first.
void DynamicThreadPool::Impl::LookOut(std::unique_lock<std::mutex>& lock, Worker const& worker) const {
    lock.unlock();
    auto const end = std::chrono::steady_clock::now() + lookout;
    while (!worker.HasTurn() && std::chrono::steady_clock::now() < end) std::this_thread::yield();
    lock.lock();
}

void DynamicThreadPool::Impl::SleepUntil(Worker& worker, std::chrono::steady_clock::time_point deadline) {
    std::unique_lock lock(mutex);
    if (Schedule::ConsumeWake(worker)) return;
    if (schedule.Sleep(worker)) {
        lock.unlock();
        StartForQueue();
        lock.lock();
    }
    auto const hasTurn = [&worker] { return worker.HasTurn(); };
    if (worker.wake.wait_until(lock, deadline, hasTurn)) return;
    schedule.Wake(worker);
    worker.wake.wait(lock, hasTurn);
}

void DynamicThreadPool::Impl::Wake(Worker& worker) {
    std::lock_guard const lock(mutex);
    schedule.Wake(worker);
}

void DynamicThreadPool::Impl::Stop() {
    if (CurrentPool == this) throw std::logic_error("DynamicThreadPool::Stop: called by a job of the same pool");
    std::lock_guard const one(stopping);
    std::unique_lock lock(mutex);
    stopped = true;
    schedule.NotifyIdle();
    ended.wait(lock, [this] { return schedule.GetThreadCount() == 0; });
    auto const thread = std::exchange(last, std::nullopt);
    lock.unlock();
    if (thread) pthread_join(*thread, nullptr);
}

std::size_t DynamicThreadPool::Impl::GetThreadCount() const {
    std::lock_guard const lock(mutex);
    return schedule.GetThreadCount();
}

std::size_t DynamicThreadPool::Impl::GetIdleCount() const {
    std::lock_guard const lock(mutex);
    return schedule.GetIdleCount();
}

DynamicThreadPool::DynamicThreadPool(unsigned minimum, std::chrono::seconds idle, unsigned processors)
    : impl(std::make_unique<Impl>(minimum, idle, processors)) {}

DynamicThreadPool::~DynamicThreadPool() = default;

void DynamicThreadPool::Post(std::function<void()> job) { impl->Post(std::move(job)); }

void DynamicThreadPool::Stop() { impl->Stop(); }

std::size_t DynamicThreadPool::GetThreadCount() const { return impl->GetThreadCount(); }

std::size_t DynamicThreadPool::GetIdleCount() const { return impl->GetIdleCount(); }

} // namespace zarn::job
