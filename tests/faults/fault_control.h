#pragma once

#include "faults/failing_calls.h"
#include "support/temporary_folder.h"

#include <map>
#include <string>

namespace zarn::test {

/// So that the count of all calls is known, none of which is to fail.
inline constexpr int Never = 1 << 30;

/// The test's hand on the calls of one process: see failing_calls.cpp.
class FaultControl {
public:
    /// folder  takes the file that test and process share
    /// Throws std::system_error when it cannot be made.
    explicit FaultControl(TemporaryFolder const& folder);
    ~FaultControl();

    FaultControl(FaultControl const&) = delete;
    FaultControl& operator=(FaultControl const&) = delete;

    /// What the process has to find in its environment.
    std::map<std::string, std::string> const& GetEnvironment() const { return environment; }

    /// From now on the n-th call of a kind fails with an errno, and with it width - 1 further ones.
    void Arm(Call call, int n, int error, int width = 1);

    /// From now on none fails.
    void Disarm();

    /// What has happened since Arm.
    bool HasFailed() const { return control->failed > 0; }

    int CountCalls() const { return control->made; }

private:
    Control* control = nullptr;
    std::map<std::string, std::string> environment;
};

} // namespace zarn::test
