#include "support/eventually.h"

#include <algorithm>
#include <thread>

namespace zarn::test {

using namespace std::chrono_literals;

bool Eventually(std::function<bool()> const& condition, std::chrono::milliseconds limit) {
    constexpr std::chrono::microseconds LongestPause = 10ms;
    auto const deadline = std::chrono::steady_clock::now() + limit;
    for (std::chrono::microseconds pause = 100us; !condition(); pause = std::min(2 * pause, LongestPause)) {
        if (std::chrono::steady_clock::now() >= deadline) return false;
        std::this_thread::sleep_for(pause);
    }
    return true;
}

} // namespace zarn::test
