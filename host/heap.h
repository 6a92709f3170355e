#pragma once

namespace zarn::host {

/// Keeps the C library's heap from growing with the number of threads that have ever used it. To be called first of
/// all, while the process has one thread. Source: mallopt(3).
void BoundHeap();

} // namespace zarn::host
