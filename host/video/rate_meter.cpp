#include "host/video/rate_meter.h"

#include <array>
#include <cmath>

namespace zarn::host::video {
namespace {

using namespace std::chrono_literals;

/// The first value comes early, since it is waited for; later ones are measured over longer times.
constexpr std::int64_t FirstIntervals = 5;
constexpr std::chrono::nanoseconds Window = 5s;

constexpr std::array UsualRates{
    FrameRate{1, 1},        FrameRate{2, 1},  FrameRate{5, 1},        FrameRate{6, 1},  FrameRate{8, 1},
    FrameRate{10, 1},       FrameRate{12, 1}, FrameRate{15, 1},       FrameRate{20, 1}, FrameRate{24000, 1001},
    FrameRate{24, 1},       FrameRate{25, 1}, FrameRate{30000, 1001}, FrameRate{30, 1}, FrameRate{50, 1},
    FrameRate{60000, 1001}, FrameRate{60, 1},
};

FrameRate Round(double rate) {
    FrameRate best{static_cast<std::int32_t>(std::lround(rate * 100)), 100};
    double distance = rate / 100;
    for (auto const& usual : UsualRates) {
        auto const difference = std::abs(rate - static_cast<double>(usual.numerator) / usual.denominator);
        if (difference < distance) {
            best = usual;
            distance = difference;
        }
    }
    return best;
}

} // namespace

void RateMeter::Add(std::chrono::nanoseconds time) {
    if (!begin) {
        begin = newest = time;
        return;
    }
    if (time <= newest) return;
    newest = time;
    ++intervals;
    auto const span = newest - *begin;
    bool const isFull = span >= Window;
    if (!isFull && (rate || intervals < FirstIntervals)) return;
    rate = Round(static_cast<double>(intervals) / std::chrono::duration<double>(span).count());
    if (!isFull) return;
    begin = newest;
    intervals = 0;
}

} // namespace zarn::host::video
