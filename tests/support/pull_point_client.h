#pragma once

#include "support/host_process.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zarn::test {

/// An events client that uses curl. Its digest login covers the whole path including the query.
class PullPointClient {
public:
    enum class Login {
        Digest,
        None, ///< for a host without authentication: curl's first digest request has no body
    };

    struct Answer {
        int status = 0;
        std::string body;
    };

    /// A pending request.
    class Call {
    public:
        explicit Call(std::vector<std::string> command) : curl(std::make_unique<Process>(std::move(command))) {}

        /// Waits for the answer. Throws std::runtime_error when none arrives within Process::Generous.
        Answer Get();

    private:
        std::unique_ptr<Process> curl;
    };

    explicit PullPointClient(HostProcess const& host, Login login = Login::Digest) : host(host), login(login) {}

    /// Requests a subscription; `content` is the content of the request element.
    Answer TrySubscribe(std::string const& content = {}) const;

    /// Subscribes and returns the subscription's address. Throws std::runtime_error when the request fails.
    std::string Subscribe(std::string const& content = {}) const;

    Answer Pull(std::string const& address, int limit = 100, std::string const& timeout = "PT0S") const;
    Call PullLater(std::string const& address, std::string const& timeout) const;

    /// Pulls until `count` messages have arrived, for at most 20 seconds, and returns their rules.
    std::vector<std::string> PullRules(std::string const& address, std::size_t count) const;

    /// Renews a subscription; `termination` is the text of TerminationTime.
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

/// A raw PullMessages request for a connection of its own, without credentials.
std::string MakePullRequest(std::string const& address, std::string const& timeout);

/// The source items "Rule" of all messages in an answer.
std::vector<std::string> GetRules(PullPointClient::Answer const& answer);

/// The text of the first element with this prefixed name; empty when there is none.
std::string GetText(PullPointClient::Answer const& answer, std::string const& name);

/// An event in a field, as JSON for the host.
/// name  of the rule
std::string MakeEvent(std::string const& name);

/// A list of such events named "0" to "count - 1".
std::string MakeEvents(int count);

/// The names of those events.
std::vector<std::string> MakeNames(int count);

} // namespace zarn::test
