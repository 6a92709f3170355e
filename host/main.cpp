#include "host/application.h"
#include "host/command_line.h"
#include "host/heap.h"
#include "host/preparation.h"
#include "host/signals.h"

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

/// Status of a process that was told something that it cannot do.
constexpr int BadOptionOrFile = 2;

/// Status of a process that could not do what it was told.
constexpr int CannotRun = 1;

/// What stopping may take after the signal.
constexpr std::chrono::milliseconds StopTime{1500};

/// What memory that is short may take to come back: longer than any request should, because what fails for want of it
/// may be what serves all requests.
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

/// Each connection is an open file; the usual limit is there for programs that use select().
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
    if (IsWaiting({SIGTERM, SIGINT})) return 0;
    Application application(std::move(preparation));
    Print("ready " + application.GetAddress() + '\n');
    application.Run();
    EndWithin(StopTime);
    application.Stop();
    // Nobody is left to read the configuration again; to end for that would be worse.
    HoldSignals({SIGHUP});
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
    // Until the application can handle them, so that none ends it in the middle of writing a file.
    HoldSignals({SIGTERM, SIGINT, SIGHUP});
    std::signal(SIGPIPE, SIG_IGN);
    // A file that may not grow any more is an error like a full disk, and no reason to end.
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
    BoundHeap();
    AwaitMemory(MemoryTime);
    try {
        return Run(count, arguments);
    } catch (std::exception const& error) {
        return Fail(CannotRun, error.what());
    }
}
