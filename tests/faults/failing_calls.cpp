// Preloaded into a process (LD_PRELOAD), makes its n-th call of one kind fail. Memory: operator new fails for every
// caller; malloc and related functions only for callers in this project's files and in gSOAP, because GLib aborts by
// design when an allocation fails.
// Otherwise the C library's headers define checking versions of some of these functions.
#undef _FORTIFY_SOURCE

#include "faults/failing_calls.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <pthread.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/timerfd.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
}

namespace {

using zarn::test::Call;
using zarn::test::Control;

/// Maps the test's file. Uses only system calls because it runs before anything else in the process.
Control* MapControl() {
    char const* const path = std::getenv(zarn::test::ControlVariable);
    if (path == nullptr) return nullptr;
    long const descriptor = syscall(SYS_openat, AT_FDCWD, path, O_RDWR | O_CLOEXEC);
    if (descriptor < 0) return nullptr;
    void* const memory =
        mmap(nullptr, sizeof(Control), PROT_READ | PROT_WRITE, MAP_SHARED, static_cast<int>(descriptor), 0);
    syscall(SYS_close, descriptor);
    return memory == MAP_FAILED ? nullptr : static_cast<Control*>(memory);
}

Control* control = nullptr;

struct Range {
    std::uintptr_t begin;
    std::uintptr_t end;
};

/// Address ranges of the code whose calls may fail.
struct Ranges {
    std::array<Range, 8> entries{};
    std::size_t count = 0;
};

int CollectRange(dl_phdr_info* object, std::size_t, void* data) {
    auto& ranges = *static_cast<Ranges*>(data);
    bool const program = object->dlpi_name[0] == '\0';
    bool const ours =
        std::strstr(object->dlpi_name, "libzarn") != nullptr || std::strstr(object->dlpi_name, "libgsoap") != nullptr;
    if (!program && !ours) return 0;
    for (int i = 0; i < object->dlpi_phnum; ++i) {
        auto const& segment = object->dlpi_phdr[i];
        if (segment.p_type != PT_LOAD || (segment.p_flags & PF_X) == 0 || ranges.count == ranges.entries.size())
            continue;
        auto const begin = object->dlpi_addr + segment.p_vaddr;
        ranges.entries.at(ranges.count++) = {begin, begin + segment.p_memsz};
    }
    return 0;
}

bool IsOurs(void const* caller) {
    static Ranges const ranges = [] {
        Ranges found;
        dl_iterate_phdr(CollectRange, &found);
        return found;
    }();
    auto const address = reinterpret_cast<std::uintptr_t>(caller);
    for (std::size_t i = 0; i < ranges.count; ++i)
        if (address >= ranges.entries.at(i).begin && address < ranges.entries.at(i).end) return true;
    return false;
}

/// Counts a call. If it must fail, sets errno and returns true.
bool Fails(Call call, void const* caller) {
    if (control == nullptr || control->call.load(std::memory_order_acquire) != static_cast<int>(call)) return false;
    if (!IsOurs(caller)) return false;
    control->made.fetch_add(1);
    int const left = control->left.fetch_sub(1);
    int const width = control->width.load();
    if (left > 1 || left <= 1 - (width > 0 ? width : 1)) return false;
    control->failed.fetch_add(1);
    errno = control->error.load();
    return true;
}

using Main = int (*)(int, char**, char**);

Main wrappedMain = nullptr;

/// Starts counting at main; nothing could handle a failure before it.
int RunMain(int count, char** arguments, char** environment) {
    control = MapControl();
    return wrappedMain(count, arguments, environment);
}

} // namespace

// NOLINTBEGIN(readability-identifier-naming)

/// As the standard requires, calls the new-handler repeatedly until it finds memory or throws.
void* operator new(std::size_t size) {
    void const* const caller = __builtin_return_address(0);
    for (;;) {
        void* const memory = Fails(Call::New, caller) ? nullptr : __libc_malloc(size == 0 ? 1 : size);
        if (memory != nullptr) return memory;
        auto const handler = std::get_new_handler();
        if (handler == nullptr) throw std::bad_alloc();
        handler();
    }
}

extern "C" {

void* malloc(std::size_t size) {
    return Fails(Call::Malloc, __builtin_return_address(0)) ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    return Fails(Call::Malloc, __builtin_return_address(0)) ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) {
    return Fails(Call::Malloc, __builtin_return_address(0)) ? nullptr : __libc_realloc(memory, size);
}

/// Defines a function that overrides the system's and fails with -1.
#define ZARN_FAILING(call, result, name, parameters, arguments)                                                        \
    result name parameters {                                                                                           \
        using Function = result(*) parameters;                                                                         \
        static auto const System = reinterpret_cast<Function>(dlsym(RTLD_NEXT, #name));                                \
        if (Fails(Call::call, __builtin_return_address(0))) return -1;                                                 \
        return System arguments;                                                                                       \
    }

ZARN_FAILING(Socket, int, socket, (int domain, int type, int protocol), (domain, type, protocol))
ZARN_FAILING(Bind, int, bind, (int fd, sockaddr const* address, socklen_t length), (fd, address, length))
ZARN_FAILING(Listen, int, listen, (int fd, int backlog), (fd, backlog))
ZARN_FAILING(Accept, int, accept, (int fd, sockaddr* address, socklen_t* length), (fd, address, length))
ZARN_FAILING(Accept, int, accept4, (int fd, sockaddr* address, socklen_t* length, int flags),
             (fd, address, length, flags))
ZARN_FAILING(Connect, int, connect, (int fd, sockaddr const* address, socklen_t length), (fd, address, length))
ZARN_FAILING(SetSocketOption, int, setsockopt, (int fd, int level, int option, void const* value, socklen_t length),
             (fd, level, option, value, length))
ZARN_FAILING(Send, ssize_t, send, (int fd, void const* data, std::size_t size, int flags), (fd, data, size, flags))
ZARN_FAILING(Send, ssize_t, sendto,
             (int fd, void const* data, std::size_t size, int flags, sockaddr const* address, socklen_t length),
             (fd, data, size, flags, address, length))
ZARN_FAILING(Send, ssize_t, sendmsg, (int fd, msghdr const* message, int flags), (fd, message, flags))
ZARN_FAILING(Receive, ssize_t, recv, (int fd, void* data, std::size_t size, int flags), (fd, data, size, flags))
ZARN_FAILING(Receive, ssize_t, recvfrom,
             (int fd, void* data, std::size_t size, int flags, sockaddr* address, socklen_t* length),
             (fd, data, size, flags, address, length))
ZARN_FAILING(Receive, ssize_t, recvmsg, (int fd, msghdr* message, int flags), (fd, message, flags))
ZARN_FAILING(EpollCreate, int, epoll_create1, (int flags), (flags))
ZARN_FAILING(EpollControl, int, epoll_ctl, (int fd, int operation, int other, epoll_event* event),
             (fd, operation, other, event))
ZARN_FAILING(EventDescriptor, int, eventfd, (unsigned value, int flags), (value, flags))
ZARN_FAILING(TimerDescriptor, int, timerfd_create, (clockid_t clock, int flags), (clock, flags))
ZARN_FAILING(SignalDescriptor, int, signalfd, (int fd, sigset_t const* mask, int flags), (fd, mask, flags))
ZARN_FAILING(MakeTemporary, int, mkostemp, (char* name, int flags), (name, flags))
ZARN_FAILING(Read, ssize_t, read, (int fd, void* data, std::size_t size), (fd, data, size))
ZARN_FAILING(Read, ssize_t, __read_chk, (int fd, void* data, std::size_t size, std::size_t room),
             (fd, data, size, room))
ZARN_FAILING(Write, ssize_t, write, (int fd, void const* data, std::size_t size), (fd, data, size))
ZARN_FAILING(Sync, int, fsync, (int fd), (fd))
ZARN_FAILING(Rename, int, rename, (char const* from, char const* to), (from, to))
ZARN_FAILING(ChangeMode, int, fchmod, (int fd, mode_t mode), (fd, mode))
ZARN_FAILING(ChangeMode, int, chmod, (char const* path, mode_t mode), (path, mode))
ZARN_FAILING(Close, int, close, (int fd), (fd))

/// The mode argument is present only when the file may be created.
int open(char const* path, int flags, ...) {
    using Function = int (*)(char const*, int, ...);
    static auto const System = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "open"));
    std::va_list more;
    va_start(more, flags);
    auto const mode = (flags & (O_CREAT | __O_TMPFILE)) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    if (Fails(Call::Open, __builtin_return_address(0))) return -1;
    return System(path, flags, mode);
}

/// Reports errors by return value, not by errno (pthread_create(3)).
int pthread_create(pthread_t* thread, pthread_attr_t const* attributes, void* (*function)(void*), void* argument) {
    using Function = decltype(&pthread_create);
    static auto const System = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "pthread_create"));
    if (Fails(Call::CreateThread, __builtin_return_address(0))) return errno;
    return System(thread, attributes, function, argument);
}

int __libc_start_main(Main main, int count, char** arguments, void (*first)(), void (*last)(), void (*end)(),
                      void* stack) {
    using Function = int (*)(Main, int, char**, void (*)(), void (*)(), void (*)(), void*);
    auto const System = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "__libc_start_main"));
    wrappedMain = main;
    return System(RunMain, count, arguments, first, last, end, stack);
}

} // extern "C"

// NOLINTEND(readability-identifier-naming)
