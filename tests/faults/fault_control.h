#pragma once

#include "faults/failing_calls.h"
#include "support/temporary_folder.h"

#include <map>
#include <string>

namespace zarn::test {

/// For counting all calls of a kind without making any fail.
inline constexpr int Never = 1 << 30;

/// Controls the failing calls of one process; see failing_calls.cpp.
class FaultControl {
public:
    /// folder  holds the file that test and process share
    /// Throws std::system_error when the file cannot be created.
    explicit FaultControl(TemporaryFolder const& folder);
    ~FaultControl();

    FaultControl(FaultControl const&) = delete;
    FaultControl& operator=(FaultControl const&) = delete;

    /// Environment variables to pass to the process.
    std::map<std::string, std::string> const& GetEnvironment() const { return environment; }

    /// Makes the n-th call of a kind from now on, and the next `width` - 1 calls, fail with `error`.
    void Arm(Call call, int n, int error, int width = 1);

    /// Stops all failures.
    void Disarm();

    /// Results since Arm.
    bool HasFailed() const { return control->failed > 0; }

    int CountCalls() const { return control->made; }

private:
    Control* control = nullptr;
    std::map<std::string, std::string> environment;
};

} // namespace zarn::test
