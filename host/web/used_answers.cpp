#include "host/web/used_answers.h"

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace zarn::host::web {
namespace {

constexpr std::chrono::seconds Span{10};

std::uint64_t Hash(authentication::AnswerIdentity const& answer) {
    std::string text;
    text.reserve(answer.nonce.size() + answer.nonceCount.size() + answer.clientNonce.size() + 2);
    // None of them holds a line end, which no header field can.
    text.append(answer.nonce).append(1, '\n').append(answer.nonceCount).append(1, '\n').append(answer.clientNonce);
    return std::hash<std::string>()(text);
}

} // namespace

bool UsedAnswers::Add(authentication::AnswerIdentity const& answer, Clock::time_point made, Clock::time_point now) {
    auto const hash = Hash(answer);
    std::vector<Slices::node_type> dropped; // destroyed when the lock is free again
    std::lock_guard const lock(mutex);
    while (!slices.empty() && slices.begin()->first + Span + LongestLife <= now) dropped.push_back(DropOldest());
    if (made < forgotten) return false;
    auto& slice =
        slices[Clock::time_point(std::chrono::floor<std::chrono::seconds>(made.time_since_epoch()) / Span * Span)];
    if (!slice.answers.insert(hash).second) return false;
    slice.newest = std::max(slice.newest, made);
    for (++size; size > maximum;) {
        dropped.push_back(DropOldest());
        forgotten = std::max(forgotten, dropped.back().mapped().newest + std::chrono::milliseconds(1));
    }
    return true;
}

std::size_t UsedAnswers::GetSize() const {
    std::lock_guard const lock(mutex);
    return size;
}

UsedAnswers::Slices::node_type UsedAnswers::DropOldest() {
    auto oldest = slices.extract(slices.begin());
    size -= oldest.mapped().answers.size();
    return oldest;
}

} // namespace zarn::host::web
