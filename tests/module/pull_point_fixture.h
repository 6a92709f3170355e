#pragma once

#include "device_fixture.h"

#include <zarn/meta/data/event.h>

#include <memory>
#include <string>
#include <vector>

namespace zarn::test {

/// A device whose clients have subscriptions. Events are published as the host does.
class PullPointFixture : public DeviceFixture {
protected:
    /// Creates a subscription with this content of the request and returns the path of its address.
    std::string Subscribe(std::string const& content = {});

    /// Pulls from an address. With a span of "PT0S" it does not wait.
    Reply Pull(std::string const& path, int limit = 100, std::string const& timeout = "PT0S");

    /// Extends a subscription; the text goes into TerminationTime.
    Reply Renew(std::string const& path, std::string const& termination);

    Reply Unsubscribe(std::string const& path);

    /// A request to pull.
    static std::shared_ptr<web::Request> MakePull(std::string const& path, int limit, std::string const& timeout);

    /// Begins to pull and does not wait for the answer.
    std::shared_ptr<web::response::Pending> PostPull(std::string const& path, int limit, std::string const& timeout);

    /// The values of the source item "Rule" of all messages, which are the names of the events.
    static std::vector<std::string> GetRules(Reply const& reply);

    /// The topics of all messages.
    static std::vector<std::string> GetTopics(Reply const& reply);

    /// The reply with "@TIME@" for each of the times that tell of now, and "@ID@" for the id of the subscription.
    static Reply Masked(Reply const& reply);
};

/// When a subscription is to end, as content of the request that creates it.
std::string Termination(std::string const& text);

/// The answer to who uses a subscription that is not there, or no longer.
testing::Matcher<Reply const&> IsNotFound();

/// An event that started at 2026-01-31T12:00:00.25Z.
std::shared_ptr<meta::data::Event> MakeEvent(std::string const& type, std::string const& name = "rule");

/// An event in a field, "presence" by default: topic `tns1:RuleEngine/FieldDetector/ObjectsInside`.
std::shared_ptr<meta::data::Event> MakeFieldEvent(std::string const& name = "rule",
                                                  std::string const& type = "presence");

/// Publishes an event as the host does.
void Publish(std::shared_ptr<meta::data::Event> event);

} // namespace zarn::test
