#include "support/process.h"

#include "support/eventually.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <ctime>
#include <stdexcept>
#include <utility>

namespace zarn::test {
namespace {

std::array<int, 2> MakePipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    return ends;
}

std::vector<std::string> MakeEnvironment(std::map<std::string, std::string> const& changes) {
    std::vector<std::string> result;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        std::string const text(*entry);
        if (!changes.contains(text.substr(0, text.find('=')))) result.push_back(text);
    }
    for (auto const& [name, value] : changes) {
        if (!value.empty()) result.push_back(name + '=' + value);
    }
    return result;
}

std::vector<char*> ToPointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (auto& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::chrono::nanoseconds ToNanoseconds(timeval const& time) {
    return std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_usec);
}

} // namespace

Process::Process(std::vector<std::string> arguments, std::map<std::string, std::string> const& environment,
                 std::vector<int> const& heldSignals) {
    auto const outputPipe = MakePipe();
    auto const logPipe = MakePipe();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, outputPipe[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, logPipe[1], STDERR_FILENO);
    sigset_t held;
    pthread_sigmask(SIG_SETMASK, nullptr, &held);
    for (int const signal : heldSignals) sigaddset(&held, signal);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setsigmask(&attributes, &held);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    auto variables = MakeEnvironment(environment);
    int const error = posix_spawnp(&id, arguments.at(0).c_str(), &actions, &attributes, ToPointers(arguments).data(),
                                   ToPointers(variables).data());
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    close(outputPipe[1]);
    close(logPipe[1]);
    output.descriptor = outputPipe[0];
    log.descriptor = logPipe[0];
    if (error != 0) {
        close(output.descriptor);
        close(log.descriptor);
        throw std::runtime_error(arguments[0] + ": " + std::strerror(error));
    }
    output.reader = std::thread([this] { Collect(output); });
    log.reader = std::thread([this] { Collect(log); });
}

Process::~Process() {
    if (!status) {
        kill(id, SIGKILL);
        waitpid(id, nullptr, 0);
    }
    output.reader.join();
    log.reader.join();
}

void Process::Signal(int number) const {
    if (!status) kill(id, number); // after exit, the id may belong to another process
}

std::optional<int> Process::Wait(std::chrono::milliseconds limit) {
    if (status) return status;
    auto const watch = static_cast<int>(syscall(SYS_pidfd_open, id, 0));
    pollfd entry{watch, POLLIN, 0};
    int const ended = poll(&entry, 1, static_cast<int>(limit.count()));
    close(watch);
    if (ended != 1) return std::nullopt;
    int raw = 0;
    rusage use{};
    wait4(id, &raw, 0, &use);
    processorTime = ToNanoseconds(use.ru_utime) + ToNanoseconds(use.ru_stime);
    status = WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw);
    AwaitEndOfStreams();
    return status;
}

std::chrono::nanoseconds Process::GetProcessorTime() const {
    if (status) return processorTime;
    clockid_t clock{};
    timespec time{};
    if (clock_getcpuclockid(id, &clock) != 0 || clock_gettime(clock, &time) != 0)
        throw std::runtime_error("the processor time of a process cannot be read");
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

std::string Process::GetOutput() const {
    std::lock_guard const lock(mutex);
    return output.text;
}

std::string Process::GetLog() const {
    std::lock_guard const lock(mutex);
    return log.text;
}

bool Process::WaitForOutput(std::string_view text, std::chrono::milliseconds limit) const {
    return WaitFor(output, text, limit);
}

bool Process::WaitForLog(std::string_view text, std::chrono::milliseconds limit) const {
    return WaitFor(log, text, limit);
}

void Process::Collect(Stream& stream) {
    std::array<char, 4096> chunk{};
    for (;;) {
        ssize_t const count = read(stream.descriptor, chunk.data(), chunk.size());
        if (count < 0 && errno == EINTR) continue;
        std::lock_guard const lock(mutex);
        if (count <= 0) break;
        stream.text.append(chunk.data(), static_cast<std::size_t>(count));
    }
    close(stream.descriptor);
    std::lock_guard const lock(mutex);
    stream.ended = true;
}

void Process::AwaitEndOfStreams() const {
    // A child of the program may keep the pipes open longer; do not wait for it.
    auto const ended = [this] {
        std::lock_guard const lock(mutex);
        return output.ended && log.ended;
    };
    Eventually(ended, std::chrono::seconds(5));
}

bool Process::WaitFor(Stream const& stream, std::string_view text, std::chrono::milliseconds limit) const {
    bool found = false;
    Eventually(
        [&] {
            std::lock_guard const lock(mutex);
            found = stream.text.find(text) != std::string::npos;
            return found || stream.ended;
        },
        limit);
    return found;
}

} // namespace zarn::test
