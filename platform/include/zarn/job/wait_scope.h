#pragma once

namespace zarn::job {

/// Tells the pool whose job the current thread runs that the job waits for something that takes long, as long as the
/// scope lives: another job may run meanwhile. On any other thread it does nothing.
///
/// The end of the scope waits until the pool lets the job go on. Declare it before the locks that the wait needs, so
/// that it ends after they have been released: who holds one of them might need a turn as well.
class WaitScope {
public:
    WaitScope();
    ~WaitScope();
    WaitScope(WaitScope const&) = delete;
    WaitScope& operator=(WaitScope const&) = delete;

private:
    bool isOutermost;
};

} // namespace zarn::job
