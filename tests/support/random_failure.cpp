#include "support/random_failure.h"

#include <dlfcn.h>
#include <openssl/rand.h>

#include <atomic>

namespace zarn::test {
namespace {

std::atomic<bool> isFailing = false;

} // namespace

RandomFailure::RandomFailure() { isFailing = true; }

RandomFailure::~RandomFailure() { isFailing = false; }

} // namespace zarn::test

/// Overrides the library's function of the same name and forwards to it.
extern "C" int RAND_bytes(unsigned char* bytes, int count) {
    static auto const Library = reinterpret_cast<decltype(&RAND_bytes)>(dlsym(RTLD_NEXT, "RAND_bytes"));
    return zarn::test::isFailing ? 0 : Library(bytes, count);
}
