// Preloaded into a process (LD_PRELOAD), counts live heap allocations, including those of libraries: operator new and
// GLib end up in these functions too. Unlike resident memory, the count is independent of the C library's page caching
// and of machine load.
#include "support/heap_page.h"

#include <fcntl.h>
#include <malloc.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" {
void* __libc_malloc(std::size_t size);
void __libc_free(void* memory);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

using zarn::test::HeapPage;

HeapPage early{}; ///< counts until the test's file is mapped
HeapPage* page = &early;

/// Maps the test's file. Child processes of the program are not counted.
__attribute__((constructor)) void MapPage() {
    char const* const path = std::getenv(zarn::test::HeapPageVariable);
    if (path == nullptr) return;
    long const descriptor = syscall(SYS_openat, AT_FDCWD, path, O_RDWR | O_CLOEXEC);
    if (descriptor < 0) return;
    void* const memory =
        mmap(nullptr, sizeof(HeapPage), PROT_READ | PROT_WRITE, MAP_SHARED, static_cast<int>(descriptor), 0);
    syscall(SYS_close, descriptor);
    if (memory == MAP_FAILED) return;
    auto* const shared = static_cast<HeapPage*>(memory);
    shared->bytes += early.bytes;
    shared->blocks += early.blocks;
    page = shared;
    unsetenv("LD_PRELOAD");
    unsetenv(zarn::test::HeapPageVariable);
}

void Add(std::size_t bytes, int blocks) {
    page->bytes.fetch_add(static_cast<std::int64_t>(bytes) * blocks, std::memory_order_relaxed);
    page->blocks.fetch_add(blocks, std::memory_order_relaxed);
}

void* Count(void* memory) {
    if (memory != nullptr) Add(malloc_usable_size(memory), 1);
    return memory;
}

} // namespace

// NOLINTBEGIN(readability-identifier-naming)

extern "C" {

void* malloc(std::size_t size) { return Count(__libc_malloc(size)); }

void* calloc(std::size_t count, std::size_t size) { return Count(__libc_calloc(count, size)); }

void* memalign(std::size_t alignment, std::size_t size) { return Count(__libc_memalign(alignment, size)); }

void* aligned_alloc(std::size_t alignment, std::size_t size) { return Count(__libc_memalign(alignment, size)); }

int posix_memalign(void** result, std::size_t alignment, std::size_t size) {
    if (alignment == 0 || alignment % sizeof(void*) != 0 || (alignment & (alignment - 1)) != 0) return EINVAL;
    void* const memory = Count(__libc_memalign(alignment, size));
    if (memory == nullptr) return ENOMEM;
    *result = memory;
    return 0;
}

void* realloc(void* memory, std::size_t size) {
    auto const before = memory == nullptr ? 0 : malloc_usable_size(memory);
    void* const result = __libc_realloc(memory, size);
    bool const freed = memory != nullptr && (result != nullptr || size == 0);
    if (freed) Add(before, -1);
    return Count(result);
}

void* reallocarray(void* memory, std::size_t count, std::size_t size) {
    std::size_t bytes = 0;
    if (__builtin_mul_overflow(count, size, &bytes)) {
        errno = ENOMEM;
        return nullptr;
    }
    return realloc(memory, bytes);
}

void free(void* memory) {
    if (memory == nullptr) return;
    Add(malloc_usable_size(memory), -1);
    __libc_free(memory);
}

} // extern "C"

// NOLINTEND(readability-identifier-naming)
