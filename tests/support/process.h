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

/// A program that a test has started, with what it writes. Killed when the object goes.
class Process {
public:
    /// For what has to happen at all, on a machine that may be busy elsewhere for seconds. Only a test that fails waits
    /// this long.
    static constexpr std::chrono::seconds Generous{30};

    /// arguments    program (found by PATH when it has no "/") and arguments
    /// environment  variables that are set, or with an empty value unset, beside those of the test
    /// heldSignals  blocked in the program, in addition to those that are blocked in the test
    /// Throws std::runtime_error when it cannot be started.
    explicit Process(std::vector<std::string> arguments, std::map<std::string, std::string> const& environment = {},
                     std::vector<int> const& heldSignals = {});

    /// Kills the program if it still runs.
    ~Process();

    Process(Process const&) = delete;
    Process& operator=(Process const&) = delete;

    void Signal(int number) const;

    /// Waits until the program ends, or `limit` is over. Its exit status, 128 + signal for one that was killed; none
    /// when it still runs. Once it has ended, output and log are complete.
    std::optional<int> Wait(std::chrono::milliseconds limit = Generous);

    /// What the program has written so far to standard output and standard error.
    std::string GetOutput() const;
    std::string GetLog() const;

    /// Waits until the standard output or the log contains `text`; false when `limit` is over or the program has ended
    /// without it.
    bool WaitForOutput(std::string_view text, std::chrono::milliseconds limit = Generous) const;
    bool WaitForLog(std::string_view text, std::chrono::milliseconds limit = Generous) const;

    /// The processor time of all its threads so far, including those that have ended; the total once `Wait` has seen
    /// its end. Other programs hardly change it.
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
    std::chrono::nanoseconds processorTime{}; ///< when it has ended
    mutable std::mutex mutex;
    Stream output;
    Stream log;
};

} // namespace zarn::test
