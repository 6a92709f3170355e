#pragma once

#include <sched.h>

#include <functional>
#include <thread>

namespace zarn::test {

/// Runs `work` on a thread that is alone on a machine of its own, as far as host name and network go: the name may be
/// set, and there is nothing but a loopback device without address. The threads that `work` starts are there as well.
/// False, with nothing run, when the kernel does not allow it.
inline bool RunOnPrivateMachine(std::function<void()> const& work) {
    bool entered = false;
    std::thread([&] {
        // Namespaces belong to the thread, so that the process around it keeps its own.
        entered = unshare(CLONE_NEWUTS | CLONE_NEWNET) == 0;
        if (entered) work();
    }).join();
    return entered;
}

} // namespace zarn::test
