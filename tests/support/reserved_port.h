#pragma once

#include <cstdint>

namespace zarn::test {

/// A TCP port on which nobody listens, kept for its owner: no other test gets it, and the system chooses it for nobody.
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
