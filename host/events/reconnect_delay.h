#pragma once

#include <algorithm>
#include <chrono>

namespace zarn::host::events {

/// The pauses before a lost connection is tried again: half a second, doubling up to half a minute, each shortened by
/// chance to as little as its half, so that the clients of a broker that was away do not come back all at once. Pure.
class ReconnectDelay {
public:
    /// A connection that lasted this long was good: the next failure is a new one. Two clients of the same name, of
    /// which the broker lets go one for the other, do not come so far and get slower and slower.
    static constexpr std::chrono::seconds GoodRun{10};

    static constexpr std::chrono::milliseconds First{500};
    static constexpr std::chrono::milliseconds Longest{30000};

    /// lasted  how long the connection was usable, 0 when it never was
    /// chance  a random number from 0 to 1
    /// Returns how long to wait.
    std::chrono::milliseconds Fail(std::chrono::steady_clock::duration lasted, double chance) {
        if (lasted >= GoodRun) next = First;
        auto const pause = next;
        next = std::min(next * 2, Longest);
        return std::chrono::duration_cast<std::chrono::milliseconds>(pause * (1 - chance / 2));
    }

    /// The next failure is the first one.
    void Reset() { next = First; }

private:
    std::chrono::milliseconds next = First;
};

} // namespace zarn::host::events
