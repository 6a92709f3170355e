#pragma once

#include <chrono>
#include <functional>

namespace zarn::test {

/// Polls a condition until it holds; false when it still does not hold after `limit`.
/// The default limit is generous because only a failing test waits that long.
bool Eventually(std::function<bool()> const& condition, std::chrono::milliseconds limit = std::chrono::seconds(60));

} // namespace zarn::test
