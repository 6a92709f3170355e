#include <zarn/job/dynamic_thread_pool.h>
#include <zarn/logging/limited_logger.h>

#include <pthread.h>

#include <algorithm>
#include <condition_variable>
#include <cstdint>
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

} // namespace

class DynamicThreadPool::Impl {
public:
    using Job = std::function<void()>;

    Impl(unsigned minimum, std::chrono::seconds idle);

    ~Impl() { Stop(); }

    Impl(Impl const&) = delete;
    Impl& operator=(Impl const&) = delete;

    void Post(Job job);
    void Stop();
    std::size_t GetThreadCount() const;
    std::size_t GetIdleCount() const;

private:
    /// What a thread waits with. It has a condition variable of its own, so that the pool chooses which thread wakes
    /// up.
    struct Worker {
        std::condition_variable wake;
        Job job;
    };

    bool GiveToIdle(Job& job);
    void Start(Job& first);
    void Work(Job first);
    void Run(Job&& taken) noexcept;
    bool WaitForJob(std::unique_lock<std::mutex>& lock, Worker& worker);

    /// The pool that the current thread belongs to.
    static thread_local Impl const* Current;

    std::size_t const minimum;
    std::chrono::seconds const idle;
    logging::LimitedLogger failures{"zarn.job.DynamicThreadPool"};
    std::mutex stopping; ///< lets the second of two Stops wait for the first; taken before `mutex`

    mutable std::mutex mutex; ///< guards the members below and the jobs of the waiting workers
    std::condition_variable ended;
    std::vector<Worker*> waiting;  ///< the one that became idle last is at the end
    std::size_t threads = 0;       ///< started or being started, and not yet ending
    std::optional<pthread_t> last; ///< the last thread that went; it joins the one before it
    bool stopped = false;
};

thread_local DynamicThreadPool::Impl const* DynamicThreadPool::Impl::Current = nullptr;

DynamicThreadPool::Impl::Impl(unsigned minimum, std::chrono::seconds idle)
    : minimum(minimum), idle(std::clamp(idle, std::chrono::seconds(0), MaximumIdle)) {
    try {
        Job none;
        for (unsigned started = 0; started < minimum; ++started) {
            std::unique_lock lock(mutex);
            waiting.reserve(++threads);
            lock.unlock();
            Start(none);
        }
    } catch (...) {
        Stop();
        throw;
    }
}

void DynamicThreadPool::Impl::Post(Job job) {
    if (!job) throw std::invalid_argument("DynamicThreadPool::Post: the job is an empty function");
    {
        std::lock_guard const lock(mutex);
        if (stopped) throw std::runtime_error("DynamicThreadPool::Post: the pool has been stopped");
        if (GiveToIdle(job)) return;
        waiting.reserve(threads + 1); // here, so that a worker can always enter itself
        ++threads;
    }
    try {
        Start(job);
    } catch (std::system_error const&) {
        std::lock_guard const lock(mutex);
        if (stopped || !GiveToIdle(job)) throw;
    }
}

/// Hands the job to the worker that became idle last. Call with the lock.
bool DynamicThreadPool::Impl::GiveToIdle(Job& job) {
    if (waiting.empty()) return false;
    auto* const worker = waiting.back();
    waiting.pop_back();
    worker->job = std::move(job);
    worker->wake.notify_one();
    return true;
}

/// Starts a thread that has been counted already, outside the lock since this takes a while. When it fails, the thread
/// is no longer counted and the job is still the caller's.
void DynamicThreadPool::Impl::Start(Job& first) {
    try {
        auto const shared = std::make_shared<Job>(std::move(first));
        try {
            StartThread([this, shared] { Work(std::move(*shared)); });
        } catch (...) {
            first = std::move(*shared);
            throw;
        }
    } catch (...) {
        std::lock_guard const lock(mutex);
        --threads;
        ended.notify_all();
        throw;
    }
}

void DynamicThreadPool::Impl::Work(Job first) {
    Current = this;
    Worker worker;
    worker.job = std::move(first);
    std::unique_lock lock(mutex, std::defer_lock);
    do {
        if (lock.owns_lock()) lock.unlock();
        if (worker.job) Run(std::move(worker.job));
        lock.lock();
    } while (WaitForJob(lock, worker));
    auto const previous = std::exchange(last, pthread_self());
    --threads;
    ended.notify_all();
    lock.unlock();
    if (previous) pthread_join(*previous, nullptr);
}

/// Runs the job and destroys it. This is the boundary for what jobs throw.
void DynamicThreadPool::Impl::Run(Job&& taken) noexcept {
    auto const job = std::exchange(taken, nullptr);
    try {
        job();
    } catch (std::exception const& exception) {
        failures.Log(logging::Level::Error, "A job threw: %0%", exception.what());
    } catch (...) {
        failures.Log(logging::Level::Error, "A job threw: an exception of unknown type");
    }
}

/// Waits with the lock until there is a job for the worker; false when its thread has to go.
bool DynamicThreadPool::Impl::WaitForJob(std::unique_lock<std::mutex>& lock, Worker& worker) {
    auto const deadline = std::chrono::steady_clock::now() + idle;
    waiting.push_back(&worker);
    bool late = false;
    while (!worker.job && !stopped && !(late && threads > minimum)) {
        if (threads <= minimum)
            worker.wake.wait(lock);
        else
            late = worker.wake.wait_until(lock, deadline) == std::cv_status::timeout;
    }
    if (worker.job) return true;
    std::erase(waiting, &worker);
    return false;
}

void DynamicThreadPool::Impl::Stop() {
    if (Current == this) throw std::logic_error("DynamicThreadPool::Stop: called by a job of the same pool");
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

DynamicThreadPool::DynamicThreadPool(unsigned minimum, std::chrono::seconds idle)
    : impl(std::make_unique<Impl>(minimum, idle)) {}

DynamicThreadPool::~DynamicThreadPool() = default;

void DynamicThreadPool::Post(std::function<void()> job) { impl->Post(std::move(job)); }

void DynamicThreadPool::Stop() { impl->Stop(); }

std::size_t DynamicThreadPool::GetThreadCount() const { return impl->GetThreadCount(); }

std::size_t DynamicThreadPool::GetIdleCount() const { return impl->GetIdleCount(); }

} // namespace zarn::job
