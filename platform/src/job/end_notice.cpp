#include <zarn/job/end_notice.h>

#include <utility>

namespace zarn::job {

namespace {

thread_local EndNotice* Current = nullptr;

} // namespace

EndNotice::EndNotice(std::function<void()> function)
    : ended(std::move(function)), outer(std::exchange(Current, this)) {}

EndNotice::~EndNotice() { Current = outer; }

std::function<void()> EndNotice::TakeForJob() {
    if (Current == nullptr) return nullptr;
    ++Current->count;
    return Current->ended;
}

} // namespace zarn::job
