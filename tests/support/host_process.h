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

/// A running `zarn-host` with its own home folder and free ports, ready once constructed.
class HostProcess {
public:
    struct Options {
        /// Content of the configuration file; empty: no file.
        std::string configuration = TwoDescribedChannels;

        /// Additional arguments after `--config FILE`.
        std::vector<std::string> arguments = {};

        /// Password of `admin`; empty: not set.
        std::string password = "a test's password";

        /// Program and arguments that launch the host; the host's own command line is appended.
        std::vector<std::string> launcher = {};

        /// Additional environment variables.
        std::map<std::string, std::string> environment = {};

        /// Folder that holds `config.json`; null: a new folder.
        std::shared_ptr<TemporaryFolder> folder = {};

        /// Lets the host exit on its own when shutdown times out. Off by default, so that a test notices a hanging stop
        /// and a slow machine does not look like one.
        bool endsItself = false;
    };

    /// Free ports, no discovery, and two channels without video.
    static char const* const TwoDescribedChannels;

    /// Starts the host and waits until it is ready. Throws std::runtime_error with the host's log when the host exits
    /// instead or is not ready within Process::Generous.
    explicit HostProcess(Options options);

    HostProcess() : HostProcess(Options{}) {}

    /// Stops the host if it still runs and expects a clean exit.
    ~HostProcess();

    HostProcess(HostProcess const&) = delete;
    HostProcess& operator=(HostProcess const&) = delete;

    /// "http://127.0.0.1:PORT", or "https://...".
    std::string GetUrl() const;

    std::uint16_t GetPort() const { return port; }

    /// The RTSP port from the status document. Only for a host without TLS.
    std::uint16_t GetRtspPort() const;

    /// The status document. Only for a host without TLS.
    boost::json::value GetHealth() const;

    std::string const& GetPassword() const { return password; }

    TemporaryFolder const& GetFolder() const { return *folder; }

    /// Sends SIGTERM and waits. Returns the exit status, or -1 when the host still runs after `limit`.
    int Stop(std::chrono::milliseconds limit = Process::Generous);

    /// Expects that the host stops within `limit` using less than a second of processor time.
    /// limit  must be shorter than any timeout that a stopping host must not wait for, such as those of its clients
    void ExpectStop(std::chrono::milliseconds limit = Process::Generous);

    /// The underlying process: signals, output, log.
    Process& GetProcess() { return *process; }

    Process const& GetProcess() const { return *process; }

    /// Starts a host with these options without waiting until it is ready, for tests in which it never becomes ready.
    static std::unique_ptr<Process> Launch(Options const& options, TemporaryFolder const& folder);

private:
    std::shared_ptr<TemporaryFolder> folder;
    std::string password;
    std::unique_ptr<Process> process;
    bool tls = false;
    std::uint16_t port = 0;
};

} // namespace zarn::test
