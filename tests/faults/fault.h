#pragma once

#include "faults/failing_calls.h"

#include <ostream>
#include <string>

namespace zarn::test {

/// The call that fails, and its errno.
struct Fault {
    Call call;
    int error;
};

inline std::string NameOf(Fault const& fault) { return CallNames.at(static_cast<std::size_t>(fault.call)); }

inline void PrintTo(Fault const& fault, std::ostream* stream) { *stream << NameOf(fault); }

} // namespace zarn::test
