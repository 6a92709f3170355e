#pragma once

#include <algorithm>
#include <chrono>

namespace zarn::host::video {

/// The pauses before a failed source is opened again: one second, doubling up to half a minute. Pure.
class BackOff {
public:
    /// A run that lasted this long was good: the next failure is a new one.
    static constexpr std::chrono::seconds GoodRun{10};

    /// The source failed after having given frames for `lasted`. Returns how long to wait.
    std::chrono::milliseconds Fail(std::chrono::steady_clock::duration lasted) {
        if (lasted >= GoodRun) next = First;
        auto const pause = next;
        next = std::min(next * 2, Longest);
        return pause;
    }

private:
    static constexpr std::chrono::milliseconds First{1000};
    static constexpr std::chrono::milliseconds Longest{30000};

    std::chrono::milliseconds next = First;
};

} // namespace zarn::host::video
