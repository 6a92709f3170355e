#include "job/turn.h"

#include <zarn/job/condition_variable.h>

namespace zarn::job {

struct ConditionVariable::Waiting {
    Turn& turn;
    Waiting* before = nullptr;
    Waiting* behind = nullptr;
};

void ConditionVariable::WaitUntil(std::unique_lock<std::mutex>& lock, std::chrono::steady_clock::time_point deadline) {
    auto* const turn = Turn::GetCurrent();
    if (turn == nullptr) {
        foreign.wait_until(lock, deadline);
        return;
    }
    Waiting self{*turn};
    Add(self);
    lock.unlock();
    try {
        turn->SleepUntil(deadline);
    } catch (...) {
        Remove(self);
        lock.lock();
        throw;
    }
    Remove(self);
    lock.lock();
}

void ConditionVariable::NotifyAll() {
    foreign.notify_all();
    std::lock_guard const guard(mutex);
    for (auto const* each = first; each != nullptr; each = each->behind) each->turn.Wake();
}

void ConditionVariable::Add(Waiting& waiting) {
    std::lock_guard const guard(mutex);
    waiting.before = last;
    (last == nullptr ? first : last->behind) = &waiting;
    last = &waiting;
}

void ConditionVariable::Remove(Waiting& waiting) {
    std::lock_guard const guard(mutex);
    (waiting.before == nullptr ? first : waiting.before->behind) = waiting.behind;
    (waiting.behind == nullptr ? last : waiting.behind->before) = waiting.before;
}

} // namespace zarn::job
