#pragma once

#include <functional>

namespace zarn::job {

/// How a job has ended.
enum class End {
    Ran,     ///< it has run
    Dropped, ///< it has not run, because no thread could be started for it
};

/// While it lives, every job that its thread posts to a pool calls a function once the job has ended and has been
/// destroyed: a caller thus hears of the end of a job that other code posts for it. Of nested notices only the
/// innermost is used. Must be destroyed on the thread that made it.
class EndNotice {
public:
    /// Hears how a job has ended.
    using Function = std::function<void(End)>;

    /// ended  called once for each job, on any thread; must neither throw nor wait
    explicit EndNotice(Function ended);
    ~EndNotice();
    EndNotice(EndNotice const&) = delete;
    EndNotice& operator=(EndNotice const&) = delete;

    /// How many jobs have been posted that call the function, or have called it.
    unsigned GetCount() const noexcept { return count; }

    /// For a pool: the notice for a job that the current thread posts now; null when there is none.
    static EndNotice* GetInnermost() noexcept;

    /// For a pool: what the job has to call.
    Function const& GetFunction() const noexcept { return ended; }

    /// For a pool: it has taken the job.
    void CountJob() noexcept { ++count; }

private:
    Function ended;
    EndNotice* outer;
    unsigned count = 0;
};

} // namespace zarn::job
