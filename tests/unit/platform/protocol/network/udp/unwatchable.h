#pragma once

namespace zarn::test {

/// While it lives, nothing that this thread opens can be watched for events: the system's limit is reached.
class Unwatchable {
public:
    Unwatchable();
    ~Unwatchable();
    Unwatchable(Unwatchable const&) = delete;
    Unwatchable& operator=(Unwatchable const&) = delete;
};

} // namespace zarn::test
