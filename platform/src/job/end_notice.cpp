#include <zarn/job/end_notice.h>

#include <utility>

namespace zarn::job {

namespace {

thread_local EndNotice* Innermost = nullptr;

} // namespace

EndNotice::EndNotice(Function function) : ended(std::move(function)), outer(std::exchange(Innermost, this)) {}

EndNotice::~EndNotice() { Innermost = outer; }

EndNotice* EndNotice::GetInnermost() noexcept { return Innermost; }

} // namespace zarn::job
