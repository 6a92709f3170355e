#pragma once

#include <functional>

namespace zarn::job {

/// As long as it lives, each job that its thread posts to a pool calls a function when it has ended: after the job has
/// run, or was dropped without having run, and has been destroyed. So a caller hears of the end of a job that it hands
/// over through other code. Of nested notices the innermost holds. To be destroyed on the thread that made it.
class EndNotice {
public:
    /// ended  called once for each job, on a thread of the pool; must neither throw nor wait
    explicit EndNotice(std::function<void()> ended);
    ~EndNotice();
    EndNotice(EndNotice const&) = delete;
    EndNotice& operator=(EndNotice const&) = delete;

    /// How many jobs have been posted that call the function, or have called it.
    unsigned GetCount() const noexcept { return count; }

    /// For a pool: what the job that the current thread posts now has to call; empty without a notice.
    static std::function<void()> TakeForJob();

private:
    std::function<void()> ended;
    EndNotice* outer;
    unsigned count = 0;
};

} // namespace zarn::job
