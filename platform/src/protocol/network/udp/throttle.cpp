#include <zarn/protocol/network/udp/throttle.h>

#include <algorithm>

namespace zarn::protocol::network::udp {

TokenBucket::TokenBucket(Rate rate) noexcept
    : interval(std::chrono::duration_cast<Clock::duration>(std::chrono::seconds(1)) / rate.perSecond),
      tolerance(interval * (rate.burst - 1)) {}

bool TokenBucket::HasToken(Clock::time_point now) const noexcept { return full - now <= tolerance; }

void TokenBucket::TakeToken(Clock::time_point now) noexcept { full = std::max(full, now) + interval; }

bool TokenBucket::IsFull(Clock::time_point now) const noexcept { return full <= now; }

bool Throttle::Admit(boost::asio::ip::address_v4 const& source, Clock::time_point now) {
    auto known = sources.find(source);
    if (known != sources.end() && !known->second.HasToken(now)) return false;
    if (!all.HasToken(now)) return false;
    if (known == sources.end()) {
        if (sources.size() >= MaximumSources) {
            std::erase_if(sources, [&](auto const& each) { return each.second.IsFull(now); });
        }
        known = sources.emplace(source, TokenBucket(PerSource)).first;
    }
    all.TakeToken(now);
    known->second.TakeToken(now);
    return true;
}

} // namespace zarn::protocol::network::udp
