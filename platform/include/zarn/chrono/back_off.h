#pragma once

#include <algorithm>
#include <chrono>

namespace zarn::chrono {

/// The pauses before something that failed is tried again: they double from a first one up to half a minute. Pure.
class BackOff {
public:
    /// After a run of this length the next failure counts as the first one.
    static constexpr std::chrono::seconds GoodRun{10};

    /// No pause is longer.
    static constexpr std::chrono::milliseconds Longest{30000};

    /// first  the pause after the first failure
    explicit BackOff(std::chrono::milliseconds first) : first(first) {}

    /// lasted  how long it worked before it failed; 0 when it never did
    /// chance  a random number from 0 to 1 that shortens the pause by up to half, so that clients that lost the same
    ///         server do not all come back at once
    /// Returns how long to wait.
    std::chrono::milliseconds Fail(std::chrono::steady_clock::duration lasted, double chance = 0) {
        if (lasted >= GoodRun) next = first;
        auto const pause = next;
        next = std::min(next * 2, Longest);
        return std::chrono::duration_cast<std::chrono::milliseconds>(pause * (1 - chance / 2));
    }

    /// Makes the next failure the first one.
    void Reset() { next = first; }

private:
    std::chrono::milliseconds first;
    std::chrono::milliseconds next = first;
};

} // namespace zarn::chrono
