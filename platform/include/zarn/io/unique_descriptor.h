#pragma once

#include <unistd.h>

#include <utility>

namespace zarn::io {

/// Owns a file descriptor and closes it. A negative one is none, so that the result of a system call can be given as it
/// is and tested afterwards.
class UniqueDescriptor {
public:
    explicit UniqueDescriptor(int descriptor = -1) noexcept : descriptor(descriptor) {}

    UniqueDescriptor(UniqueDescriptor&& other) noexcept : descriptor(other.Release()) {}

    UniqueDescriptor& operator=(UniqueDescriptor&& other) noexcept {
        std::swap(descriptor, other.descriptor);
        return *this;
    }

    ~UniqueDescriptor() {
        if (*this) close(descriptor);
    }

    explicit operator bool() const noexcept { return descriptor >= 0; }

    int Get() const noexcept { return descriptor; }

    /// Hands the descriptor over to the caller.
    int Release() noexcept { return std::exchange(descriptor, -1); }

private:
    int descriptor;
};

} // namespace zarn::io
