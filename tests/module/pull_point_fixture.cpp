#include "pull_point_fixture.h"

#include <zarn/chrono/iso8601.h>
#include <zarn/meta/data/zone.h>
#include <zarn/onvif/events/handler.h>

#include <regex>
#include <utility>

namespace zarn::test {

std::string PullPointFixture::Subscribe(std::string const& content) {
    auto const reply = Ask("<tev:CreatePullPointSubscription>" + content + "</tev:CreatePullPointSubscription>");
    EXPECT_EQ(reply.status, 200) << reply.text;
    auto const address = reply.Text("//tev:SubscriptionReference/wsa5:Address");
    return address.substr(std::min(address.find("/onvif/"), address.size()));
}

Reply PullPointFixture::Pull(std::string const& path, int limit, std::string const& timeout) {
    return ToReply(WaitFor(*PostPull(path, limit, timeout)));
}

std::shared_ptr<web::Request> PullPointFixture::MakePull(std::string const& path, int limit,
                                                         std::string const& timeout) {
    return MakeRequest(Envelope("<tev:PullMessages><tev:Timeout>" + timeout + "</tev:Timeout><tev:MessageLimit>" +
                                std::to_string(limit) + "</tev:MessageLimit></tev:PullMessages>"),
                       {.path = path});
}

std::shared_ptr<web::response::Pending> PullPointFixture::PostPull(std::string const& path, int limit,
                                                                   std::string const& timeout) {
    return Manager().Post(MakePull(path, limit, timeout));
}

Reply PullPointFixture::Renew(std::string const& path, std::string const& termination) {
    return Ask("<wsnt:Renew><wsnt:TerminationTime>" + termination + "</wsnt:TerminationTime></wsnt:Renew>",
               {.path = path});
}

Reply PullPointFixture::Unsubscribe(std::string const& path) { return Ask("<wsnt:Unsubscribe/>", {.path = path}); }

std::vector<std::string> PullPointFixture::GetRules(Reply const& reply) {
    return reply.Texts("//tt:Message/tt:Source/tt:SimpleItem[@Name='Rule']/@Value");
}

std::vector<std::string> PullPointFixture::GetTopics(Reply const& reply) {
    return reply.Texts("//wsnt:NotificationMessage/wsnt:Topic");
}

Reply PullPointFixture::Masked(Reply const& reply) {
    static std::regex const time("(:(?:CurrentTime|TerminationTime)>)\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\dZ<");
    static std::regex const id("(Subscription\\?Idx=)\\d+<");
    auto const text = std::regex_replace(reply.text, time, "$1@TIME@<");
    return {reply.status, reply.fields, std::regex_replace(text, id, "$1@ID@<")};
}

std::string Termination(std::string const& text) {
    return "<tev:InitialTerminationTime>" + text + "</tev:InitialTerminationTime>";
}

testing::Matcher<Reply const&> IsNotFound() {
    return IsFault("Sender", "Subscription ID not found", {"ter:InvalidArgVal"});
}

std::shared_ptr<meta::data::Event> MakeEvent(std::string const& type, std::string const& name) {
    return std::make_shared<meta::data::Event>(type, name, chrono::FromIso8601("2026-01-31T12:00:00.25Z"));
}

std::shared_ptr<meta::data::Event> MakeFieldEvent(std::string const& name, std::string const& type) {
    auto event = MakeEvent(type, name);
    event->Emplace<meta::data::Zone>(meta::data::Zone::Field);
    return event;
}

void Publish(std::shared_ptr<meta::data::Event> event) { zarn::onvif::events::Publish(std::move(event)); }

} // namespace zarn::test
