#pragma once

#include <unistd.h>

#include <utility>

namespace zarn::io {

/// Owns a file descriptor and closes it. Takes the result of a system call as it is:
/// a negative number stands for no descriptor.
class UniqueDescriptor {
public:
    /// descriptor  the descriptor to own; negative: none
    explicit UniqueDescriptor(int descriptor = -1) noexcept : descriptor(descriptor) {}

    /// Takes over the descriptor; the other owns none.
    UniqueDescriptor(UniqueDescriptor&& other) noexcept : descriptor(other.Release()) {}

    /// Takes over the descriptor; the other closes the previous one.
    UniqueDescriptor& operator=(UniqueDescriptor&& other) noexcept {
        std::swap(descriptor, other.descriptor);
        return *this;
    }

    ~UniqueDescriptor() {
        if (*this) close(descriptor);
    }

    /// Whether there is a descriptor.
    explicit operator bool() const noexcept { return descriptor >= 0; }

    /// The descriptor, still owned; negative: none.
    int Get() const noexcept { return descriptor; }

    /// Hands the descriptor over to the caller.
    int Release() noexcept { return std::exchange(descriptor, -1); }

private:
    int descriptor;
};

} // namespace zarn::io
