#pragma once

#include <chrono>
#include <functional>

namespace zarn::test {

/// Checks a condition again and again until it holds; false when it still does not hold after `limit`.
/// The default limit is generous: only a test that fails waits for it.
bool Eventually(std::function<bool()> const& condition, std::chrono::milliseconds limit = std::chrono::seconds(60));

} // namespace zarn::test
