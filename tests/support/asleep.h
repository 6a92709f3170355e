#pragma once

#include "support/eventually.h"

#include <sys/types.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>

namespace zarn::test {

/// Whether the kernel has put a thread to sleep, as it does with one that waits: for a lock, an event, the end of
/// another thread. A thread that is ready to run but gets no processor is not asleep.
inline bool IsAsleep(std::filesystem::path const& task) {
    std::string stat;
    std::getline(std::ifstream(task / "stat"), stat);
    // The state follows the name, which is in parentheses.
    return stat.find(") S ") != stat.npos;
}

/// The same of a thread of this process, by its gettid().
inline bool IsAsleep(pid_t thread) {
    return IsAsleep(std::filesystem::path("/proc/self/task") / std::to_string(thread));
}

/// Waits until a thread of this process sleeps.
inline bool FallsAsleep(pid_t thread) {
    return Eventually([&] { return IsAsleep(thread); });
}

/// Waits until at least as many other threads of the process are there and all of them sleep, so that nothing more
/// happens without an event from outside or a timer. Checks twice, because it reads the threads one after the other.
inline bool OthersSleep(std::size_t count) {
    auto const self = std::to_string(gettid());
    auto const look = [&] {
        std::size_t sleepers = 0;
        for (auto const& task : std::filesystem::directory_iterator("/proc/self/task")) {
            if (task.path().filename() == self) continue;
            if (!IsAsleep(task.path())) return false;
            ++sleepers;
        }
        return sleepers >= count;
    };
    int looks = 0;
    return Eventually([&] {
        looks = look() ? looks + 1 : 0;
        return looks == 2;
    });
}

} // namespace zarn::test
