#pragma once

#include <chrono>
#include <optional>
#include <vector>

namespace zarn::host {

/// Blocks signals in this thread and in those that it starts from now on, so that they stay pending. To be called
/// before the first other thread is started.
void BlockSignals(std::vector<int> const& signals);

/// Unblocks signals in this thread; pending ones are delivered at once.
void UnblockSignals(std::vector<int> const& signals);

/// A non-blocking descriptor that is readable while one of these blocked signals is pending. A signal is pending once
/// however often it was sent; of several the lowest number is read first.
/// Throws std::system_error when the system has no descriptor.
int OpenSignals(std::vector<int> const& signals);

/// The next pending signal of such a descriptor.
std::optional<int> ReadSignal(int descriptor);

/// Whether one of these blocked signals is pending.
bool IsPending(std::vector<int> const& signals);

/// Ends the process with status 0 and a line on standard error unless it ends by itself within `time`: some calls, such
/// as those to a disk that does not answer, cannot be interrupted.
void EndWithin(std::chrono::milliseconds time);

} // namespace zarn::host
