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
    /// arguments    program (found by PATH when it has no "/") and arguments
    /// environment  variables that are set, or with an empty value unset, beside those of the test
    /// Throws std::runtime_error when it cannot be started.
    explicit Process(std::vector<std::string> arguments, std::map<std::string, std::string> const& environment = {});

    /// Kills the program if it still runs.
    ~Process();

    Process(Process const&) = delete;
    Process& operator=(Process const&) = delete;

    void Signal(int number) const;

    /// Waits until the program ends, or `limit` is over. Its exit status, 128 + signal for one that was killed; none
    /// when it still runs. Once it has ended, output and log are complete.
    std::optional<int> Wait(std::chrono::milliseconds limit);

    /// What the program has written so far to standard output and standard error.
    std::string GetOutput() const;
    std::string GetLog() const;

    /// Waits until the standard output or the log contains `text`; false when `limit` is over or the program has ended
    /// without it.
    bool WaitForOutput(std::string_view text, std::chrono::milliseconds limit) const;
    bool WaitForLog(std::string_view text, std::chrono::milliseconds limit) const;

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
    mutable std::mutex mutex;
    Stream output;
    Stream log;
};

} // namespace zarn::test
