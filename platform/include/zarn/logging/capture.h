#pragma once

#include <zarn/logging/level.h>

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::logging {

/// One log line as it was written.
struct Line {
    Level level;      ///< the level it was logged with
    std::string name; ///< of the logger
    std::string text; ///< one line, control characters escaped
};

/// Collects the log lines of the whole process while it lives, beside what goes to standard error.
/// Several captures may live at once; each sees every line of its level or above. Thread: any.
class Capture {
public:
    /// least  the least level that is collected, whatever the level of standard error is
    explicit Capture(Level least = Level::Trace);

    ~Capture();
    Capture(Capture const&) = delete;
    Capture& operator=(Capture const&) = delete;

    /// The lines so far, in the order in which they were written.
    std::vector<Line> GetLines() const;

    /// True when the text of some line so far contains `part`.
    bool Contains(std::string_view part) const;

    /// Waits until the text of some line contains `part`; false when none does within `timeout`.
    bool WaitFor(std::string_view part, std::chrono::milliseconds timeout) const;

private:
    struct State;
    std::unique_ptr<State> state;
};

} // namespace zarn::logging
