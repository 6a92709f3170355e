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

/// Runs `work` on a thread that is alone in fresh namespaces, as are the threads that it starts.
/// kinds  those of unshare(2), such as CLONE_NEWNET
/// False, with nothing run and the reason in errno, when this process may not make them.
inline bool RunInNamespaces(int kinds, std::function<void()> const& work) {
    bool entered = false;
    int reason = 0;
    std::thread([&] {
        // Namespaces belong to the thread, so that the process around it keeps its own.
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

/// The text of a skip, from the errno that RunInNamespaces left.
inline std::string WhyNoNamespace() {
    return std::string("cannot create a namespace: ") + std::strerror(errno) +
           "; run the test as root or under `unshare --map-root-user`";
}

/// Runs `work` where only a loopback interface exists that is down. Otherwise as RunInNamespaces.
inline bool RunInNetworkNamespace(std::function<void()> const& work) { return RunInNamespaces(CLONE_NEWNET, work); }

/// Runs `work` on a machine of its own, as far as host name and network go: as RunInNetworkNamespace, and the name of
/// the host may be set.
inline bool RunOnPrivateMachine(std::function<void()> const& work) {
    return RunInNamespaces(CLONE_NEWUTS | CLONE_NEWNET, work);
}

/// Runs `ip` with these arguments in the namespace of this thread; false when it fails.
inline bool Ip(std::string const& arguments) {
    return std::system(("PATH=$PATH:/sbin:/usr/sbin ip " + arguments).c_str()) == 0; // NOLINT: fixed texts
}

} // namespace zarn::test
