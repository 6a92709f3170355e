#pragma once

#include "support/peer.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <stdexcept>

namespace zarn::test {

/// Makes the next receive on this process's socket at a UDP port fail once with "connection refused".
///
/// The kernel reports an unreachable port only to a connected socket, and a receiver's socket is not connected. So this
/// object connects it for its lifetime. It uses a raw system call because the thread sanitizer would take the call for
/// the creation of another socket.
class FailingSocket {
public:
    explicit FailingSocket(unsigned short port) : descriptor(Find(port)) {
        auto const nobody = MakeEndpoint("127.0.0.1", FindFreePort());
        if (syscall(SYS_connect, descriptor, &nobody, sizeof(nobody)) != 0 || send(descriptor, "x", 1, 0) != 1)
            throw std::runtime_error("the socket cannot be made to fail");
    }

    ~FailingSocket() {
        sockaddr const unconnected{AF_UNSPEC, {}};
        syscall(SYS_connect, descriptor, &unconnected, sizeof(unconnected));
    }

    FailingSocket(FailingSocket const&) = delete;
    FailingSocket& operator=(FailingSocket const&) = delete;

    /// True until the failure has been received.
    bool IsPending() const {
        pollfd entry{descriptor, 0, 0};
        poll(&entry, 1, 0);
        return (entry.revents & POLLERR) != 0;
    }

private:
    static int Find(unsigned short port) {
        for (int each = 3; each < 1024; ++each) {
            sockaddr_in own{};
            socklen_t size = sizeof(own);
            if (getsockname(each, reinterpret_cast<sockaddr*>(&own), &size) == 0 && own.sin_family == AF_INET &&
                own.sin_port == htons(port)) {
                return each;
            }
        }
        throw std::runtime_error("no socket has the port");
    }

    int const descriptor;
};

} // namespace zarn::test
