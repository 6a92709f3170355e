#include "support/heap_count.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <system_error>

namespace zarn::test {

HeapCount::HeapCount(TemporaryFolder const& folder) {
    auto const path = folder / "counted_heap";
    auto const fail = [&path] { throw std::system_error(errno, std::generic_category(), path); };
    int const descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0 || ftruncate(descriptor, sizeof(HeapPage)) != 0) fail();
    void* const memory = mmap(nullptr, sizeof(HeapPage), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    close(descriptor);
    if (memory == MAP_FAILED) fail();
    page = new (memory) HeapPage{};
#ifdef ZARN_COUNTED_HEAP_LIBRARY
    environment = {{"LD_PRELOAD", ZARN_COUNTED_HEAP_LIBRARY}, {HeapPageVariable, path}};
#endif
}

HeapCount::~HeapCount() { munmap(page, sizeof(HeapPage)); }

} // namespace zarn::test
