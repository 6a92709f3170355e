#pragma once

#include <optional>
#include <string_view>

namespace zarn::logging {

/// How much a log line matters. The numbers are part of the interface: callers may log with the bare number.
enum class Level : unsigned {
    Trace = 1,     ///< every step, for tracking down a defect
    Debug = 2,     ///< traffic and its refusals
    Info = 4,      ///< changes of state
    Warning = 8,   ///< something is wrong, the work goes on
    Error = 16,    ///< something failed
    Critical = 32, ///< the program cannot do its work
};

/// The lower-case name of a level: "trace", "debug", "info", "warning", "error" or "critical".
/// A number between two levels has the name of the lower one; below Trace it is "trace".
std::string_view ToString(Level level) noexcept;

/// The level with that lower-case name; empty for an unknown name.
std::optional<Level> LevelFromString(std::string_view name) noexcept;

} // namespace zarn::logging
