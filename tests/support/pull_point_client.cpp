#include "support/pull_point_client.h"

#include "support/eventually.h"

#include <regex>
#include <stdexcept>
#include <utility>

namespace zarn::test {
namespace {

using namespace std::chrono_literals;

std::string MakeEnvelope(std::string const& operation) {
    return R"(<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope")"
           R"( xmlns:tev="http://www.onvif.org/ver10/events/wsdl" xmlns:wsnt="http://docs.oasis-open.org/wsn/b-2">)"
           "<s:Body>" +
           operation + "</s:Body></s:Envelope>";
}

std::string MakePull(int limit, std::string const& timeout) {
    return "<tev:PullMessages><tev:Timeout>" + timeout + "</tev:Timeout><tev:MessageLimit>" + std::to_string(limit) +
           "</tev:MessageLimit></tev:PullMessages>";
}

} // namespace

PullPointClient::Answer PullPointClient::Call::Get() {
    if (curl->Wait() != 0) throw std::runtime_error("no answer: " + curl->GetLog());
    auto body = curl->GetOutput();
    auto const end = body.rfind('\n');
    int const status = std::stoi(body.substr(end + 1));
    body.resize(end);
    return {status, std::move(body)};
}

PullPointClient::Call PullPointClient::Send(std::string const& url, std::string const& type,
                                            std::string const& body) const {
    std::vector<std::string> command{"curl",          "-sS", "-w", "\n%{http_code}", "-H", "Content-Type: " + type,
                                     "--data-binary", body,  url};
    if (login == Login::Digest) command.insert(command.end(), {"--digest", "-u", "admin:" + host.GetPassword()});
    return Call(std::move(command));
}

PullPointClient::Call PullPointClient::Ask(std::string const& address, std::string const& operation) const {
    return Send(address, "application/soap+xml; charset=utf-8", MakeEnvelope(operation));
}

PullPointClient::Answer PullPointClient::TrySubscribe(std::string const& content) const {
    return Ask(host.GetUrl() + "/onvif/events_service",
               "<tev:CreatePullPointSubscription>" + content + "</tev:CreatePullPointSubscription>")
        .Get();
}

std::string PullPointClient::Subscribe(std::string const& content) const {
    auto const answer = TrySubscribe(content);
    if (answer.status != 200) throw std::runtime_error("no subscription: " + answer.body);
    return GetText(answer, "wsa5:Address");
}

PullPointClient::Answer PullPointClient::Pull(std::string const& address, int limit, std::string const& timeout) const {
    return Ask(address, MakePull(limit, timeout)).Get();
}

PullPointClient::Call PullPointClient::PullLater(std::string const& address, std::string const& timeout) const {
    return Ask(address, MakePull(100, timeout));
}

std::vector<std::string> PullPointClient::PullRules(std::string const& address, std::size_t count) const {
    std::vector<std::string> rules;
    Eventually([&] {
        auto const answer = Pull(address, 1000, "PT1S");
        if (answer.status != 200) throw std::runtime_error("no messages: " + answer.body);
        auto const some = GetRules(answer);
        rules.insert(rules.end(), some.begin(), some.end());
        return rules.size() >= count;
    });
    return rules;
}

PullPointClient::Answer PullPointClient::Renew(std::string const& address, std::string const& termination) const {
    return Ask(address, "<wsnt:Renew><wsnt:TerminationTime>" + termination + "</wsnt:TerminationTime></wsnt:Renew>")
        .Get();
}

PullPointClient::Answer PullPointClient::Unsubscribe(std::string const& address) const {
    return Ask(address, "<wsnt:Unsubscribe/>").Get();
}

PullPointClient::Answer PullPointClient::Post(std::string const& events) const {
    return Send(host.GetUrl() + "/api/events", "application/json", events).Get();
}

std::string MakePullRequest(std::string const& address, std::string const& timeout) {
    auto const body = MakeEnvelope(MakePull(1, timeout));
    return "POST " + address.substr(address.find("/onvif/")) +
           " HTTP/1.1\r\nHost: h\r\nContent-Type: application/soap+xml\r\nContent-Length: " +
           std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::vector<std::string> GetRules(PullPointClient::Answer const& answer) {
    static std::regex const rule(R"re(Name="Rule" Value="([^"]*)")re");
    std::vector<std::string> rules;
    for (std::sregex_iterator found(answer.body.begin(), answer.body.end(), rule); found != std::sregex_iterator();
         ++found) {
        rules.push_back((*found)[1]);
    }
    return rules;
}

std::string GetText(PullPointClient::Answer const& answer, std::string const& name) {
    std::smatch match;
    return std::regex_search(answer.body, match, std::regex('<' + name + "[^>]*>([^<]*)</")) ? match[1].str() : "";
}

std::string MakeEvent(std::string const& name) {
    return R"({"type": "presence", "name": ")" + name + R"(", "zone": {"type": "field"}})";
}

std::string MakeEvents(int count) {
    std::string events;
    for (auto const& name : MakeNames(count)) events += (events.empty() ? "[" : ", ") + MakeEvent(name);
    return events + ']';
}

std::vector<std::string> MakeNames(int count) {
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) names.push_back(std::to_string(i));
    return names;
}

} // namespace zarn::test
