#pragma once

#include <cstdint>

namespace zarn::test {

/// A free TCP port, reserved for its owner: no other test gets it, and the system gives it to no program.
class ReservedPort {
public:
    /// Throws std::runtime_error when none is left.
    ReservedPort();
    ~ReservedPort();

    ReservedPort(ReservedPort const&) = delete;
    ReservedPort& operator=(ReservedPort const&) = delete;

    std::uint16_t Get() const { return port; }

private:
    int descriptor = -1;
    std::uint16_t port = 0;
};

} // namespace zarn::test
