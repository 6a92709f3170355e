#pragma once

#include <unistd.h>

#include <utility>

namespace zarn::io {

/// Owns a file descriptor and closes it. Takes the result of a system call as it is:
/// a negative number stands for no descriptor.
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
