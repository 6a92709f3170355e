#pragma once

#include "support/network_namespace.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <functional>
#include <string>
#include <system_error>
#include <thread>

namespace zarn::test {

/// A simulated machine: a network namespace with a loopback interface that is down.
class Machine {
public:
    Machine() {
        bool const entered = RunInNetworkNamespace([this] {
            descriptor = open("/proc/thread-self/ns/net", O_RDONLY | O_CLOEXEC);
            if (!Exists()) throw std::system_error(errno, std::generic_category(), "its network cannot be opened");
        });
        if (!entered) reason = WhyNoNamespace();
    }

    ~Machine() {
        if (descriptor >= 0) close(descriptor);
    }

    Machine(Machine const&) = delete;
    Machine& operator=(Machine const&) = delete;

    /// False when the kernel does not allow the namespace.
    bool Exists() const { return descriptor >= 0; }

    /// Reason why the namespace could not be created.
    std::string const& WhyNot() const { return reason; }

    /// Runs `work` on a new thread inside this namespace and waits for it. Threads started by `work` inherit the
    /// namespace.
    void Run(std::function<void()> const& work) const {
        std::thread([&] {
            try {
                if (setns(descriptor, CLONE_NEWNET) != 0) throw std::system_error(errno, std::generic_category());
                work();
            } catch (std::exception const& error) {
                ADD_FAILURE() << "on the simulated machine: " << error.what();
            }
        }).join();
    }

    /// Runs `ip` inside this namespace; false when it fails.
    bool Ip(std::string const& arguments) const {
        bool succeeded = false;
        Run([&] { succeeded = test::Ip(arguments); });
        return succeeded;
    }

    /// Path by which other programs open the namespace.
    std::string GetPath() const { return "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(descriptor); }

private:
    int descriptor = -1;
    std::string reason;
};

} // namespace zarn::test
