#include "host/signals.h"

#include <pthread.h>
#include <sys/signalfd.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <string_view>
#include <system_error>

namespace zarn::host {
namespace {

sigset_t MakeSet(std::vector<int> const& signals) {
    sigset_t set;
    sigemptyset(&set);
    for (int const signal : signals) sigaddset(&set, signal);
    return set;
}

/// Only what may be done in a signal handler.
void EndNow(int) {
    constexpr std::string_view Text = "zarn-host: shutdown timed out; exiting\n";
    [[maybe_unused]] auto const written = write(STDERR_FILENO, Text.data(), Text.size());
    _exit(0);
}

} // namespace

void BlockSignals(std::vector<int> const& signals) {
    auto const set = MakeSet(signals);
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

void UnblockSignals(std::vector<int> const& signals) {
    auto const set = MakeSet(signals);
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

int OpenSignals(std::vector<int> const& signals) {
    auto const set = MakeSet(signals);
    int const descriptor = signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
    if (descriptor < 0) throw std::system_error(errno, std::generic_category(), "signals cannot be waited for");
    return descriptor;
}

std::optional<int> ReadSignal(int descriptor) {
    signalfd_siginfo information{};
    if (read(descriptor, &information, sizeof(information)) != sizeof(information)) return std::nullopt;
    return static_cast<int>(information.ssi_signo);
}

bool IsPending(std::vector<int> const& signals) {
    sigset_t waiting;
    sigpending(&waiting);
    return std::any_of(signals.begin(), signals.end(), [&](int signal) { return sigismember(&waiting, signal) == 1; });
}

void EndWithin(std::chrono::milliseconds time) {
    struct sigaction action {};

    action.sa_handler = EndNow;
    sigaction(SIGALRM, &action, nullptr);
    itimerval timer{};
    timer.it_value.tv_sec = time.count() / 1000;
    timer.it_value.tv_usec = time.count() % 1000 * 1000;
    setitimer(ITIMER_REAL, &timer, nullptr);
}

} // namespace zarn::host
