#pragma once

namespace zarn::test {

/// During its lifetime, this thread cannot watch newly opened descriptors: the call fails as at the system's limit.
class Unwatchable {
public:
    Unwatchable();
    ~Unwatchable();
    Unwatchable(Unwatchable const&) = delete;
    Unwatchable& operator=(Unwatchable const&) = delete;
};

} // namespace zarn::test
