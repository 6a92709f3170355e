#include "host/access/used_responses.h"

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace zarn::host {
namespace {

/// The time that a slice of used responses spans.
constexpr std::chrono::seconds Span{10};

std::uint64_t Hash(authentication::DigestUse const& response) {
    std::string text;
    text.reserve(response.nonce.size() + response.nc.size() + response.cnonce.size() + 2);
    // A header field holds no line end.
    text.append(response.nonce).append(1, '\n').append(response.nc).append(1, '\n');
    return std::hash<std::string>()(text.append(response.cnonce));
}

} // namespace

bool UsedResponses::Add(authentication::DigestUse const& response, Clock::time_point made, Clock::time_point now) {
    auto const hash = Hash(response);
    std::vector<Slices::node_type> dropped; // destroyed when the lock is free again
    std::lock_guard const lock(mutex);
    while (!slices.empty() && slices.begin()->first + Span + LongestLife <= now) dropped.push_back(DropOldest());
    if (made < forgotten) return false;
    auto& slice =
        slices[Clock::time_point(std::chrono::floor<std::chrono::seconds>(made.time_since_epoch()) / Span * Span)];
    if (!slice.responses.insert(hash).second) return false;
    slice.newest = std::max(slice.newest, made);
    for (++size; size > maximum;) {
        dropped.push_back(DropOldest());
        forgotten = std::max(forgotten, dropped.back().mapped().newest + std::chrono::milliseconds(1));
    }
    return true;
}

std::size_t UsedResponses::GetSize() const {
    std::lock_guard const lock(mutex);
    return size;
}

UsedResponses::Slices::node_type UsedResponses::DropOldest() {
    auto oldest = slices.extract(slices.begin());
    size -= oldest.mapped().responses.size();
    return oldest;
}

} // namespace zarn::host
