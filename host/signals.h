#pragma once

#include <chrono>
#include <optional>
#include <vector>

namespace zarn::host {

/// Holds signals back from this thread and from all that it starts from now on: they wait. To be called before the
/// first other thread is started.
void HoldSignals(std::vector<int> const& signals);

/// Lets signals that were held come to this thread, those that wait first.
void ReleaseSignals(std::vector<int> const& signals);

/// A descriptor that is readable while one of these signals, which are held, waits; it does not block. However often a
/// signal comes meanwhile, it waits once. Of several that wait the one of the lowest number is read first.
/// Throws std::system_error when there is none.
int OpenSignals(std::vector<int> const& signals);

/// The next signal of such a descriptor, if one waits.
std::optional<int> ReadSignal(int descriptor);

/// Whether one of these signals was held and waits.
bool IsWaiting(std::vector<int> const& signals);

/// Ends the process with status 0 and a line on standard error when it has not ended by itself within `time`: some
/// things, such as a file on a disk that does not answer, cannot be interrupted.
void EndWithin(std::chrono::milliseconds time);

} // namespace zarn::host
