#include "unwatchable.h"

#include <dlfcn.h>
#include <sys/epoll.h>

#include <cerrno>

namespace {

thread_local bool Failing = false;

} // namespace

/// The thread sanitizer's version, if present, through which it tracks synchronisation.
extern "C" int __interceptor_epoll_ctl(int instance, int operation, int descriptor, epoll_event* event)
    __attribute__((weak));

/// Overrides the system function of the same name and forwards to it.
extern "C" int epoll_ctl(int instance, int operation, int descriptor, epoll_event* event) noexcept {
    static auto const System =
        __interceptor_epoll_ctl != nullptr
            ? &__interceptor_epoll_ctl
            : reinterpret_cast<decltype(&__interceptor_epoll_ctl)>(dlsym(RTLD_NEXT, "epoll_ctl"));
    if (Failing && operation == EPOLL_CTL_ADD) {
        errno = ENOSPC;
        return -1;
    }
    return System(instance, operation, descriptor, event);
}

namespace zarn::test {

Unwatchable::Unwatchable() { Failing = true; }

Unwatchable::~Unwatchable() { Failing = false; }

} // namespace zarn::test
