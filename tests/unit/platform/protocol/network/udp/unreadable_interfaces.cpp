#include "unreadable_interfaces.h"

#include "failing_new.h"

#include <dlfcn.h>
#include <ifaddrs.h>

#include <atomic>
#include <cerrno>

namespace {

std::atomic<zarn::test::Lack> Present = zarn::test::Lack::Nothing;

} // namespace

/// Overrides the system function of the same name and forwards to it.
extern "C" int getifaddrs(ifaddrs** list) noexcept {
    static auto const System = reinterpret_cast<decltype(&getifaddrs)>(dlsym(RTLD_NEXT, "getifaddrs"));
    auto const lack = Present.load();
    if (lack == zarn::test::Lack::Descriptors) {
        errno = EMFILE;
        return -1;
    }
    if (lack == zarn::test::Lack::Memory) zarn::test::FailNextNew(); // fails when the caller builds its own list
    return System(list);
}

namespace zarn::test {

UnreadableInterfaces::UnreadableInterfaces(Lack lack) { Present = lack; }

UnreadableInterfaces::~UnreadableInterfaces() { Present = Lack::Nothing; }

} // namespace zarn::test
