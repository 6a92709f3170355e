#pragma once

#include "support/host_process.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zarn::test {

/// A client of the events service of a host: curl, which logs in by HTTP digest over the whole path with its query.
class PullPointClient {
public:
    enum class Login {
        Digest,
        None, ///< for a host that requires none: curl's first request would be without its content
    };

    struct Answer {
        int status = 0;
        std::string body;
    };

    /// A request under way.
    class Call {
    public:
        explicit Call(std::vector<std::string> command) : curl(std::make_unique<Process>(std::move(command))) {}

        /// Waits for the answer. Throws std::runtime_error when none comes within Process::Generous.
        Answer Get();

    private:
        std::unique_ptr<Process> curl;
    };

    explicit PullPointClient(HostProcess const& host, Login login = Login::Digest) : host(host), login(login) {}

    /// Asks for a subscription with this content of the request.
    Answer TrySubscribe(std::string const& content = {}) const;

    /// The same, and returns its address. Throws std::runtime_error when there is none.
    std::string Subscribe(std::string const& content = {}) const;

    Answer Pull(std::string const& address, int limit = 100, std::string const& timeout = "PT0S") const;
    Call PullLater(std::string const& address, std::string const& timeout) const;

    /// Pulls until as many messages have come, or for 20 seconds, and returns their rules.
    std::vector<std::string> PullRules(std::string const& address, std::size_t count) const;

    /// Extends a subscription; the text goes into TerminationTime.
    Answer Renew(std::string const& address, std::string const& termination) const;

    Answer Unsubscribe(std::string const& address) const;

    /// Posts events as JSON.
    Answer Post(std::string const& events) const;

private:
    Call Send(std::string const& url, std::string const& type, std::string const& body) const;
    Call Ask(std::string const& address, std::string const& operation) const;

    HostProcess const& host;
    Login login;
};

/// A request by which PullMessages is sent over a connection of its own, without login.
std::string MakePullRequest(std::string const& address, std::string const& timeout);

/// The values of the source item "Rule" of all messages of an answer.
std::vector<std::string> GetRules(PullPointClient::Answer const& answer);

/// The text of the first element with this name and prefix; empty when there is none.
std::string GetText(PullPointClient::Answer const& answer, std::string const& name);

/// What a host gets as JSON: an event in a field.
/// name  of the rule
std::string MakeEvent(std::string const& name);

/// The same events as a list: "0" to "count - 1".
std::string MakeEvents(int count);

/// The names of such events.
std::vector<std::string> MakeNames(int count);

} // namespace zarn::test
