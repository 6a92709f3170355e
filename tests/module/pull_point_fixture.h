#pragma once

#include "device_fixture.h"

#include <zarn/meta/data/event.h>

#include <memory>
#include <string>
#include <vector>

namespace zarn::test {

/// A device whose clients have subscriptions. Publishes events as the host does.
class PullPointFixture : public DeviceFixture {
protected:
    /// Creates a subscription; `content` is the content of the request. Returns the path of its address.
    std::string Subscribe(std::string const& content = {});

    /// Pulls from an address. "PT0S" returns immediately.
    Reply Pull(std::string const& path, int limit = 100, std::string const& timeout = "PT0S");

    /// Renews a subscription; `termination` is the text of TerminationTime.
    Reply Renew(std::string const& path, std::string const& termination);

    Reply Unsubscribe(std::string const& path);

    static std::shared_ptr<web::Request> MakePull(std::string const& path, int limit, std::string const& timeout);

    /// Starts a pull without waiting for the answer.
    std::shared_ptr<web::response::Pending> PostPull(std::string const& path, int limit, std::string const& timeout);

    /// The values of the source item "Rule" of all messages, that is, the names of the events.
    static std::vector<std::string> GetRules(Reply const& reply);

    static std::vector<std::string> GetTopics(Reply const& reply);

    /// Replaces current times in the reply with "@TIME@" and the subscription's id with "@ID@".
    static Reply Masked(Reply const& reply);
};

/// The InitialTerminationTime element for the request that creates a subscription.
std::string Termination(std::string const& text);

/// Matches the fault for a subscription that does not exist or has ended.
testing::Matcher<Reply const&> IsNotFound();

/// An event that started at 2026-01-31T12:00:00.25Z.
std::shared_ptr<meta::data::Event> MakeEvent(std::string const& type, std::string const& name = "rule");

/// An event in a field, "presence" by default: topic `tns1:RuleEngine/FieldDetector/ObjectsInside`.
std::shared_ptr<meta::data::Event> MakeFieldEvent(std::string const& name = "rule",
                                                  std::string const& type = "presence");

/// Publishes an event as the host does.
void Publish(std::shared_ptr<meta::data::Event> event);

} // namespace zarn::test
