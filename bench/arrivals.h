#pragma once

#include <chrono>
#include <cstddef>
#include <vector>

namespace zarn::bench {

/// When the pictures of one viewer arrive. Thread: one at a time.
class Arrivals {
public:
    using Clock = std::chrono::steady_clock;

    explicit Arrivals(Clock::time_point start) : start(start) {}

    /// Counts from now on into the gaps that GetGaps returns; before, into the joining gap.
    void BeginWindow() { isInWindow = true; }

    /// A picture is complete.
    void Add(Clock::time_point now);

    /// Pictures so far.
    std::size_t GetCount() const { return pictures; }

    /// From the start to the first picture; 0 without one.
    std::chrono::duration<float> GetTimeToFirst() const { return toFirst; }

    /// The longest gap before the window, while other viewers join.
    std::chrono::duration<float> GetJoiningGap() const { return joining; }

    /// The gaps between pictures that both arrived in the window, in seconds.
    std::vector<float> const& GetGaps() const { return gaps; }

    /// The time since the last picture, which is a gap that has not ended.
    std::chrono::duration<float> GetOpenGap(Clock::time_point now) const { return now - last; }

private:
    Clock::time_point start;
    Clock::time_point last;
    std::size_t pictures = 0;
    bool isInWindow = false;
    bool isLastInWindow = false;
    std::chrono::duration<float> toFirst{};
    std::chrono::duration<float> joining{};
    std::vector<float> gaps;
};

} // namespace zarn::bench
