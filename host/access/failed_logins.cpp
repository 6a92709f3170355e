#include "host/access/failed_logins.h"

#include <algorithm>

namespace zarn::host {
namespace {

constexpr std::chrono::minutes Window{1};

} // namespace

void FailedLogins::SetLimit(std::size_t value) {
    std::lock_guard const lock(mutex);
    limit = value;
}

void FailedLogins::Count(boost::asio::ip::address const& peer, Clock::time_point now) {
    std::lock_guard const lock(mutex);
    if (!failures.contains(peer) && failures.size() >= MaximumAddresses) ForgetOne();
    auto& times = failures[peer];
    times.push_back(now);
    // The newest limit + 1 decide; older ones cannot change the answer.
    while (times.size() > limit + 1) times.pop_front();
}

std::optional<std::chrono::seconds> FailedLogins::GetWait(boost::asio::ip::address const& peer,
                                                          Clock::time_point now) const {
    std::lock_guard const lock(mutex);
    auto const found = failures.find(peer);
    if (found == failures.end() || found->second.size() <= limit) return std::nullopt;
    // With the oldest of the newest limit + 1 out of the window, no more than `limit` are left in it.
    auto const& times = found->second;
    auto const end = times[times.size() - 1 - limit] + Window;
    if (end <= now) return std::nullopt;
    return std::max(std::chrono::ceil<std::chrono::seconds>(end - now), std::chrono::seconds(1));
}

void FailedLogins::ForgetOne() {
    auto const oldest = std::min_element(failures.begin(), failures.end(), [](auto const& left, auto const& right) {
        return left.second.back() < right.second.back();
    });
    failures.erase(oldest);
}

} // namespace zarn::host
