#pragma once

#include <sys/resource.h>

namespace zarn::test {

/// Prevents this process from opening files during its lifetime.
class NoDescriptors {
public:
    NoDescriptors() {
        getrlimit(RLIMIT_NOFILE, &before);
        rlimit const none{0, before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
    }

    ~NoDescriptors() { setrlimit(RLIMIT_NOFILE, &before); }

    NoDescriptors(NoDescriptors const&) = delete;
    NoDescriptors& operator=(NoDescriptors const&) = delete;

private:
    rlimit before{};
};

} // namespace zarn::test
