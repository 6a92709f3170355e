#include "host/application.h"
#include "host/command_line.h"
#include "host/heap.h"
#include "host/preparation.h"
#include "host/signals.h"
#include "host/sleepers.h"

#include <zarn/logging/logger.h>

#include <sys/resource.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <string>
#include <utility>
#include <variant>

namespace {

using namespace zarn::host;

/// Exit status for a bad option or file.
constexpr int BadOptionOrFile = 2;

/// Exit status for a failure to start or run.
constexpr int CannotRun = 1;

/// How long stopping may take.
constexpr std::chrono::milliseconds StopTime{1500};

/// How long a failed allocation is retried: longer than any request should take, because what fails without memory may
/// be what serves all requests.
constexpr std::chrono::seconds MemoryTime{10};

/// Needs no memory.
int Fail(int status, char const* text) {
    std::fprintf(stderr, "zarn-host: %s\n", text);
    return status;
}

void Print(std::string const& text) {
    std::fputs(text.c_str(), stdout);
    std::fflush(stdout);
}

/// Each connection is an open file; the default limit protects programs that use select().
void RaiseFileLimit() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
}

int Serve(Preparation preparation) {
    if (auto const& password = preparation.credentials.generated) {
        Print("password of user admin, shown only now: " + *password + '\n');
    }
    if (IsPending({SIGTERM, SIGINT})) return 0;
    Application application(std::move(preparation));
    Print("ready " + application.GetAddress() + '\n');
    application.Run();
    EndWithin(StopTime);
    application.Stop();
    // A SIGHUP from now on would end the process by default.
    BlockSignals({SIGHUP});
    return 0;
}

int Start(CommandLine const& commandLine) {
    zarn::logging::SetLevel(commandLine.logLevel);
    Preparation preparation;
    try {
        preparation = Prepare(commandLine);
    } catch (std::exception const& error) {
        return Fail(BadOptionOrFile, error.what());
    }
    if (commandLine.check) {
        Print(preparation.file->GetPath() + ": ok\n");
        return 0;
    }
    try {
        return Serve(std::move(preparation));
    } catch (std::exception const& error) {
        return Fail(CannotRun, error.what());
    }
}

int Run(int count, char** arguments) {
    // Until the application handles them, so that none ends the process while it writes a file.
    BlockSignals({SIGTERM, SIGINT, SIGHUP});
    std::signal(SIGPIPE, SIG_IGN);
    // A file over its size limit is an error like a full disk, no reason to end.
    std::signal(SIGXFSZ, SIG_IGN);
    RaiseFileLimit();
    auto const commandLine = ParseCommandLine(count, arguments);
    HidePassword(count, arguments);
    if (auto const* misuse = std::get_if<Misuse>(&commandLine)) return Fail(BadOptionOrFile, misuse->text.c_str());
    if (auto const* information = std::get_if<Information>(&commandLine)) {
        Print(information->text);
        return 0;
    }
    return Start(std::get<CommandLine>(commandLine));
}

} // namespace

int main(int count, char** arguments) {
    LimitHeap();
    SpreadSleepers();
    RetryAllocations(MemoryTime);
    try {
        return Run(count, arguments);
    } catch (std::exception const& error) {
        return Fail(CannotRun, error.what());
    }
}
