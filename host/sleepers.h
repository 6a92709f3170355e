#pragma once

namespace zarn::host {

/// Keeps the cost of waking a thread the same however many others sleep. Linux 6.17 and later find sleeping threads
/// through a table for each process whose size follows the number of processors alone: with thousands of waiting pulls,
/// each wake-up would search through hundreds of threads. Earlier systems have one large table for all processes.
/// Call it before threads are started.
void SpreadSleepers() noexcept;

} // namespace zarn::host
