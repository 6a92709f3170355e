#pragma once

#include <zarn/job/condition_variable.h>
#include <zarn/job/dynamic_thread_pool.h>

#include <pthread.h>
#include <sys/types.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <mutex>
#include <string>
#include <thread>

namespace zarn::job {

inline constexpr std::chrono::seconds Patience(60);

/// Blocks jobs until it is opened. The destructor opens it so that a failed test does not hang.
class Gate {
public:
    Gate() = default;

    ~Gate() { Open(); }

    Gate(Gate const&) = delete;
    Gate& operator=(Gate const&) = delete;

    void Wait() {
        std::unique_lock lock(mutex);
        ++waiting;
        changed.notify_all();
        changed.wait(lock, [this] { return open; });
    }

    /// The same, and the pool may run other jobs meanwhile.
    void WaitAsJob() {
        std::unique_lock lock(mutex);
        ++waiting;
        changed.notify_all();
        while (!open) opened.WaitUntil(lock, std::chrono::steady_clock::time_point::max());
    }

    /// Waits until `count` jobs are blocked.
    bool WaitForWaiting(std::size_t count) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, Patience, [&] { return waiting >= count; });
    }

    void Open() {
        std::lock_guard const lock(mutex);
        open = true;
        changed.notify_all();
        opened.NotifyAll();
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    ConditionVariable opened;
    std::size_t waiting = 0;
    bool open = false;
};

/// Posts a job that blocks at the gate, with its turn, and waits until it does.
[[nodiscard]] inline bool Occupy(DynamicThreadPool& pool, Gate& gate) {
    pool.Post([&gate] { gate.Wait(); });
    return gate.WaitForWaiting(1);
}

/// Posts jobs that wait at the gate, without a turn, and waits until all do.
[[nodiscard]] inline bool LetWait(DynamicThreadPool& pool, Gate& gate, std::size_t count = 1) {
    for (std::size_t posted = 0; posted < count; ++posted) pool.Post([&gate] { gate.WaitAsJob(); });
    return gate.WaitForWaiting(count);
}

/// Posts a job and waits until it runs.
inline void RunJob(DynamicThreadPool& pool) {
    std::promise<void> ran;
    pool.Post([&ran] { ran.set_value(); });
    ran.get_future().get();
}

/// Makes `most` at least this value.
inline void RaiseTo(std::atomic<int>& most, int value) {
    for (int present = most; present < value && !most.compare_exchange_weak(present, value);) continue;
}

inline std::size_t GetStackSizeOfThisThread() {
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) return 0;
    std::size_t size = 0;
    pthread_attr_getstacksize(&attributes, &size);
    pthread_attr_destroy(&attributes);
    return size;
}

/// Memory of this process in bytes: its address space, and what of it is in use.
struct Memory {
    std::size_t total = 0;
    std::size_t resident = 0;
};

inline Memory GetMemory() {
    Memory pages;
    std::ifstream("/proc/self/statm") >> pages.total >> pages.resident;
    auto const page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return {pages.total * page, pages.resident * page};
}

/// Number of voluntary context switches of this process's pool threads, one for each wait.
inline std::size_t GetContextSwitchesOfPoolThreads() {
    std::size_t sum = 0;
    for (auto const& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream file(task.path() / "status");
        bool ours = false;
        for (std::string line; std::getline(file, line);) {
            if (line == "Name:\tzarn.job") ours = true;
            constexpr std::string_view Key = "voluntary_ctxt_switches:";
            if (ours && line.starts_with(Key)) sum += std::stoul(line.substr(Key.size()));
        }
    }
    return sum;
}

} // namespace zarn::job
