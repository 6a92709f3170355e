#pragma once

#include <gtest/gtest.h>
#include <sched.h>

#include <cerrno>
#include <cstdlib>
#include <exception>
#include <functional>
#include <string>
#include <thread>

namespace zarn::network {

/// Runs `work` on a thread that is alone in a fresh network namespace, where only a loopback interface exists that is
/// down. False, with the reason in errno, when this process may not make one.
inline bool RunInNetworkNamespace(std::function<void()> const& work) {
    bool entered = false;
    int reason = 0;
    std::thread([&] {
        // A namespace belongs to the thread, so that the process around it keeps its own.
        entered = unshare(CLONE_NEWNET) == 0;
        if (!entered) reason = errno;
        if (!entered) return;
        try {
            work();
        } catch (std::exception const& error) {
            ADD_FAILURE() << "in the namespace: " << error.what();
        }
    }).join();
    errno = reason;
    return entered;
}

/// Runs `ip` with these arguments in the namespace of this thread; false when it fails.
inline bool Ip(std::string const& arguments) {
    return std::system(("PATH=$PATH:/sbin:/usr/sbin ip " + arguments).c_str()) == 0; // NOLINT: fixed texts
}

} // namespace zarn::network
