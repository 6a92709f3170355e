#pragma once

#include <gtest/gtest.h>
#include <sched.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <functional>
#include <string>
#include <thread>

namespace zarn::test {

/// Runs `work` on a thread in new namespaces, which threads that it starts inherit.
/// kinds  flags of unshare(2), such as CLONE_NEWNET
/// Returns false without running `work`, and sets errno, when this process may not create them.
inline bool RunInNamespaces(int kinds, std::function<void()> const& work) {
    bool entered = false;
    int reason = 0;
    std::thread([&] {
        // Namespaces are per thread; the rest of the process keeps its own.
        entered = unshare(kinds) == 0;
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

/// Reason for skipping a test, from the errno left by RunInNamespaces.
inline std::string WhyNoNamespace() {
    return std::string("cannot create a namespace: ") + std::strerror(errno) +
           "; run the test as root or under `unshare --map-root-user`";
}

/// Runs `work` in a new network namespace with only a loopback interface, which is down. See RunInNamespaces.
inline bool RunInNetworkNamespace(std::function<void()> const& work) { return RunInNamespaces(CLONE_NEWNET, work); }

/// Like RunInNetworkNamespace, but `work` may also set the host name.
inline bool RunOnPrivateMachine(std::function<void()> const& work) {
    return RunInNamespaces(CLONE_NEWUTS | CLONE_NEWNET, work);
}

/// Runs `ip` with these arguments in the namespace of this thread; false when it fails.
inline bool Ip(std::string const& arguments) {
    return std::system(("PATH=$PATH:/sbin:/usr/sbin ip " + arguments).c_str()) == 0; // NOLINT: fixed texts
}

} // namespace zarn::test
