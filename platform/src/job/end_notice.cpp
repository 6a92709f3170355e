#include <zarn/job/end_notice.h>

#include <utility>

namespace zarn::job {

namespace {

thread_local EndNotice* Innermost = nullptr;

} // namespace

EndNotice::EndNotice(std::function<void()> function)
    : ended(std::move(function)), outer(std::exchange(Innermost, this)) {}

EndNotice::~EndNotice() { Innermost = outer; }

std::function<void()> EndNotice::TakeForJob() {
    if (Innermost == nullptr) return nullptr;
    ++Innermost->count;
    return Innermost->ended;
}

} // namespace zarn::job
