#include "host/video/rtsp/guess_limit.h"

#include <algorithm>

namespace zarn::host::video::rtsp {
namespace {

constexpr std::chrono::minutes Length{1};

} // namespace

void GuessLimit::Count(std::string const& address, Clock::time_point now) {
    std::scoped_lock const lock(mutex);
    auto& minute = minutes.try_emplace(address, Minute{now, 0}).first->second;
    if (now - minute.begin >= Length) minute = {now, 0};
    ++minute.wrong;
    if (minutes.size() <= MaximumAddresses) return;
    minutes.erase(std::ranges::min_element(minutes, {}, [](auto const& entry) { return entry.second.begin; }));
}

bool GuessLimit::IsReached(std::string const& address, Clock::time_point now) const {
    std::scoped_lock const lock(mutex);
    auto const found = minutes.find(address);
    return found != minutes.end() && now - found->second.begin < Length && found->second.wrong > Maximum;
}

std::size_t GuessLimit::GetAddressCount() const {
    std::scoped_lock const lock(mutex);
    return minutes.size();
}

} // namespace zarn::host::video::rtsp
