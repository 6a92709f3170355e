#pragma once

#include <chrono>
#include <utility>
#include <vector>

namespace zarn::host {

/// Holds signals back from this thread and from all that it starts from now on: they wait. To be called before the
/// first other thread is started.
void HoldSignals(std::vector<int> const& signals);

/// Lets signals that were held come to this thread, those that wait first.
void ReleaseSignals(std::vector<int> const& signals);

/// Holds signals back for as long as it lives, for instance while threads are started.
class SignalHold {
public:
    explicit SignalHold(std::vector<int> held) : signals(std::move(held)) { HoldSignals(signals); }

    ~SignalHold() { ReleaseSignals(signals); }

    SignalHold(SignalHold const&) = delete;
    SignalHold& operator=(SignalHold const&) = delete;

private:
    std::vector<int> const signals;
};

/// Whether one of these signals was held and waits.
bool IsWaiting(std::vector<int> const& signals);

/// Ends the process with status 0 and a line on standard error when it has not ended by itself within `time`: some
/// things, such as a file on a disk that does not answer, cannot be interrupted.
void EndWithin(std::chrono::milliseconds time);

} // namespace zarn::host
