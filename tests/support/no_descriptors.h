#pragma once

#include <sys/resource.h>

namespace zarn::test {

/// Lets this process open no files while it lives.
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
