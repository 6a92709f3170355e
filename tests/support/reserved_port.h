#pragma once

#include <cstdint>

namespace zarn::test {

/// A free TCP port, reserved against other tests and outside the range that the system assigns.
class ReservedPort {
public:
    /// Throws std::runtime_error when no port is free.
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
