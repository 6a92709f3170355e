#pragma once

#include "support/eventually.h"

#include <sys/types.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>

namespace zarn::test {

/// True if the kernel has put the thread to sleep, for example on a lock, an event or a join. A runnable thread without
/// a processor is not asleep.
inline bool IsAsleep(std::filesystem::path const& task) {
    std::string stat;
    std::getline(std::ifstream(task / "stat"), stat);
    // The state follows the parenthesised name.
    return stat.find(") S ") != stat.npos;
}

/// The same for a thread of this process, by its gettid().
inline bool IsAsleep(pid_t thread) {
    return IsAsleep(std::filesystem::path("/proc/self/task") / std::to_string(thread));
}

/// Waits until a thread of this process is asleep.
inline bool FallsAsleep(pid_t thread) {
    return Eventually([&] { return IsAsleep(thread); });
}

/// Waits until at least `count` other threads of this process exist and all of them sleep, so that only an external
/// event or a timer can cause further work. Checks twice because the threads are read one after another.
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
