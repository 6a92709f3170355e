#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace zarn::test {

/// A child process whose output is captured. The destructor kills it.
class Process {
public:
    /// Timeout for events that must happen, even on a busy machine. Only a failing test waits this long.
    static constexpr std::chrono::seconds Generous{30};

    /// arguments    program (found by PATH when it has no "/") and arguments
    /// environment  variables to set in addition to the test's own; an empty value unsets one
    /// heldSignals  signals to block in the program in addition to those blocked in the test
    /// Throws std::runtime_error when the program cannot be started.
    explicit Process(std::vector<std::string> arguments, std::map<std::string, std::string> const& environment = {},
                     std::vector<int> const& heldSignals = {});

    ~Process();

    Process(Process const&) = delete;
    Process& operator=(Process const&) = delete;

    void Signal(int number) const;

    /// Waits until the program ends, for at most `limit`. Returns its exit status, 128 + signal when it was killed, or
    /// nullopt when it still runs. After the end, output and log are complete.
    std::optional<int> Wait(std::chrono::milliseconds limit = Generous);

    /// Standard output and standard error so far.
    std::string GetOutput() const;
    std::string GetLog() const;

    /// Waits until the output or the log contains `text`; false when `limit` expires or the program ends without it.
    bool WaitForOutput(std::string_view text, std::chrono::milliseconds limit = Generous) const;
    bool WaitForLog(std::string_view text, std::chrono::milliseconds limit = Generous) const;

    /// Processor time of all its threads so far, including finished ones; the total once `Wait` has seen the end.
    /// Largely independent of machine load.
    std::chrono::nanoseconds GetProcessorTime() const;

    pid_t GetId() const { return id; }

private:
    struct Stream {
        std::string text; ///< guarded by mutex
        bool ended = false;
        int descriptor = -1;
        std::thread reader;
    };

    void Collect(Stream& stream);
    void AwaitEndOfStreams() const;
    bool WaitFor(Stream const& stream, std::string_view text, std::chrono::milliseconds limit) const;

    pid_t id = -1;
    std::optional<int> status;
    std::chrono::nanoseconds processorTime{}; ///< total, set at the end
    mutable std::mutex mutex;
    Stream output;
    Stream log;
};

} // namespace zarn::test
