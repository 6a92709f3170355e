#include "support/thread_failure.h"

#include <dlfcn.h>
#include <pthread.h>

#include <cerrno>
#include <utility>

namespace zarn::test {
namespace {

constexpr int Unlimited = -1;

thread_local int successesLeft = Unlimited;
thread_local std::function<void()> beforeFailure;

} // namespace

ThreadFailure::ThreadFailure(int successes) { successesLeft = successes; }

ThreadFailure::ThreadFailure(std::function<void()> whenFailing) : ThreadFailure() {
    beforeFailure = std::move(whenFailing);
}

ThreadFailure::~ThreadFailure() {
    successesLeft = Unlimited;
    beforeFailure = nullptr;
}

} // namespace zarn::test

/// The sanitizer's version, if present; call it so that the sanitizer knows the thread.
extern "C" int __interceptor_pthread_create(pthread_t* thread, pthread_attr_t const* attributes,
                                            void* (*function)(void*), void* argument) __attribute__((weak));

/// Overrides the system function of the same name and forwards to it.
extern "C" int pthread_create(pthread_t* thread, pthread_attr_t const* attributes, void* (*function)(void*),
                              void* argument) {
    using Function = decltype(&__interceptor_pthread_create);
    static auto const System = __interceptor_pthread_create != nullptr
                                   ? &__interceptor_pthread_create
                                   : reinterpret_cast<Function>(dlsym(RTLD_NEXT, "pthread_create"));
    using zarn::test::successesLeft;
    if (successesLeft == 0) {
        if (auto const call = std::exchange(zarn::test::beforeFailure, nullptr)) call();
        return EAGAIN;
    }
    if (successesLeft > 0) --successesLeft;
    return System(thread, attributes, function, argument);
}
