#pragma once

#include "unit/platform/network/network_namespace.h"

#include <functional>

namespace zarn::test {

/// Runs `work` on a thread that is alone on a machine of its own, as far as host name and network go: the name may be
/// set, and there is nothing but a loopback device without address. The threads that `work` starts are there as well.
/// False, with nothing run, when the kernel does not allow it.
inline bool RunOnPrivateMachine(std::function<void()> const& work) {
    return network::RunInNamespaces(CLONE_NEWUTS | CLONE_NEWNET, work);
}

} // namespace zarn::test
