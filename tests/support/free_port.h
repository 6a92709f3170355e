#pragma once

#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <stdexcept>

namespace zarn::test {

/// A port that nobody uses just now. It is none of those that the system gives out, which another program might get
/// before it is used, and processes that look at the same time begin at different ones.
/// isFree  tells whether a port can be bound
template <class IsFree>
std::uint16_t FindPort(IsFree const& isFree) {
    constexpr int First = 10'000;
    constexpr int Count = 20'000;
    static std::atomic<int> next = getpid() * 7;
    for (int attempt = 0; attempt < Count; ++attempt) {
        auto const port = static_cast<std::uint16_t>(First + next++ % Count);
        if (isFree(port)) return port;
    }
    throw std::runtime_error("no port is free");
}

} // namespace zarn::test
