#include "arrivals.h"

#include <algorithm>

namespace zarn::bench {

void Arrivals::Add(Clock::time_point now) {
    std::chrono::duration<float> const gap = now - last;
    if (pictures++ == 0) {
        toFirst = now - start;
    } else if (!isInWindow) {
        joining = std::max(joining, gap);
    } else if (isLastInWindow) {
        gaps.push_back(gap.count());
    }
    last = now;
    isLastInWindow = isInWindow;
}

} // namespace zarn::bench
