#pragma once

#include "support/process.h"
#include "support/temporary_folder.h"

#include <boost/json/value.hpp>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace zarn::test {

/// A `zarn-host` of a test: its own folder as home, free ports, ready when constructed.
class HostProcess {
public:
    struct Options {
        /// The content of the configuration file; empty: there is none.
        std::string configuration = TwoDescribedChannels;

        /// Further arguments, behind `--config FILE`.
        std::vector<std::string> arguments = {};

        /// Password of `admin`; empty: none is given.
        std::string password = "a test's password";

        /// What starts the program instead: a program with arguments, behind which the host and its own come.
        std::vector<std::string> launcher = {};

        /// Further environment variables.
        std::map<std::string, std::string> environment = {};

        /// Where the configuration is, as `config.json`; null: a new folder.
        std::shared_ptr<TemporaryFolder> folder = {};

        /// Whether the host may end itself when it does not stop in time. If not, the test sees a stop that hangs, and
        /// a slow machine does not look like one.
        bool endsItself = false;
    };

    /// Free ports, no discovery, and two channels without video.
    static char const* const TwoDescribedChannels;

    /// Starts the host and waits until it is ready. Throws std::runtime_error with its log when it ends instead, or is
    /// not ready within Process::Generous.
    explicit HostProcess(Options options);

    HostProcess() : HostProcess(Options{}) {}

    /// Has the host end, unless it has already, and expects that it does so well.
    ~HostProcess();

    HostProcess(HostProcess const&) = delete;
    HostProcess& operator=(HostProcess const&) = delete;

    /// "http://127.0.0.1:PORT", or "https://...".
    std::string GetUrl() const;

    std::uint16_t GetPort() const { return port; }

    /// The RTSP port, as the status document gives it. For a host without TLS.
    std::uint16_t GetRtspPort() const;

    /// The status document. For a host without TLS.
    boost::json::value GetHealth() const;

    std::string const& GetPassword() const { return password; }

    TemporaryFolder const& GetFolder() const { return *folder; }

    /// Sends SIGTERM and waits for the end; the exit status, -1 when it does not come within `limit`.
    int Stop(std::chrono::milliseconds limit = Process::Generous);

    /// Expects that the host stops within `limit`, with less than a second of processor time.
    /// limit  must be shorter than what the host may not wait for, such as the times of its clients
    void ExpectStop(std::chrono::milliseconds limit = Process::Generous);

    /// The program itself: signals, output, log.
    Process& GetProcess() { return *process; }

    Process const& GetProcess() const { return *process; }

    /// Arguments and environment of a host that would start as these options say, for tests of one that does not become
    /// ready.
    static std::unique_ptr<Process> Launch(Options const& options, TemporaryFolder const& folder);

private:
    std::shared_ptr<TemporaryFolder> folder;
    std::string password;
    std::unique_ptr<Process> process;
    bool tls = false;
    std::uint16_t port = 0;
};

} // namespace zarn::test
