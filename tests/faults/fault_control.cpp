#include "faults/fault_control.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <system_error>

namespace zarn::test {
namespace {

[[noreturn]] void Fail(std::string const& path) { throw std::system_error(errno, std::generic_category(), path); }

} // namespace

FaultControl::FaultControl(TemporaryFolder const& folder) {
    auto const path = folder / "failing_calls";
    int const descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0 || ftruncate(descriptor, sizeof(Control)) != 0) Fail(path);
    void* const memory = mmap(nullptr, sizeof(Control), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    close(descriptor);
    if (memory == MAP_FAILED) Fail(path);
    control = new (memory) Control{};
    environment = {{"LD_PRELOAD", ZARN_FAILING_CALLS_LIBRARY}, {ControlVariable, path}};
}

FaultControl::~FaultControl() { munmap(control, sizeof(Control)); }

void FaultControl::Arm(Call call, int n, int error, int width) {
    Disarm();
    control->left = n;
    control->width = width;
    control->error = error;
    control->made = 0;
    control->failed = 0;
    control->call.store(static_cast<int>(call), std::memory_order_release);
}

void FaultControl::Disarm() { control->call.store(static_cast<int>(Call::None), std::memory_order_release); }

} // namespace zarn::test
