// Complete requests to the module with the host's real libraries.
#include "exchange_script.h"
#include "require.h"

#include <service/onvif/manager.h>
#include <zarn/authentication/digest.h>
#include <zarn/authentication/engine.h>
#include <zarn/authentication/ha1.h>
#include <zarn/authentication/realm.h>
#include <zarn/configuration/node/root.h>
#include <zarn/configuration/schema.h>
#include <zarn/container/buffer.h>
#include <zarn/logging/capture.h>
#include <zarn/logging/logger.h>
#include <zarn/meta/data/object.h>
#include <zarn/meta/data/zone.h>
#include <zarn/onvif/events/handler.h>
#include <zarn/text/character.h>

#include <boost/json/parse.hpp>
#include <interface/operations.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <future>
#include <optional>
#include <pugixml.hpp>
#include <set>
#include <thread>
#include <utility>

namespace zarn::fuzz {
namespace {

using namespace std::chrono_literals;
using web::response::Pending;

constexpr std::size_t MaximumLength = std::size_t{64} * 1024;
constexpr std::size_t MaximumRequests = 4;
constexpr std::size_t LongestTarget = 1000;
constexpr std::size_t LongestAnswer = std::size_t{4} * 1024 * 1024;
constexpr char Password[] = "vermilion-Zarn-4711";

/// Delays until a waiting client receives an event, its subscription ends, and its wait times out.
constexpr auto EventAfter = 10ms;
constexpr auto EndAfter = 20ms;
constexpr auto GiveUpAfter = 8s;

/// Whether an element is the response of an operation that needs no login.
bool IsOpenAnswer(std::string_view name) {
    return std::ranges::any_of(bindings::Operations, [&](bindings::Operation const& operation) {
        bool const isOpen =
            operation.access == bindings::Access::Open || operation.access == bindings::Access::Accepted;
        return isOpen && name == std::string(operation.prefix) + ":" + std::string(operation.name) + "Response";
    });
}

/// True if the text holds only characters allowed in XML, including references. Source: XML 1.0, 2.2.
bool IsXmlText(std::string_view text) {
    if (!text::IsXml(text)) return false;
    constexpr std::string_view Start = "&#x";
    for (auto at = text.find(Start); at != std::string_view::npos; at = text.find(Start, at + 1)) {
        unsigned long code = 0;
        auto const digits = text.substr(at + Start.size());
        std::from_chars(digits.data(), digits.data() + digits.size(), code, 16);
        if (code < 0x20 && code != '\t' && code != '\n' && code != '\r') return false;
    }
    return true;
}

class Request final : public web::Request {
public:
    using Method = protocol::network::http::Method;

    explicit Request(ScriptedRequest scripted) : scripted(std::move(scripted)) {}

    Method GetMethod() const override { return Method::Post; }

    std::string_view GetTarget() const override { return scripted.target; }

    std::string_view GetBody() const override { return scripted.body; }

    std::map<std::string_view, std::string_view> GetFields() const override {
        return {scripted.fields.begin(), scripted.fields.end()};
    }

private:
    ScriptedRequest scripted;
};

std::shared_ptr<configuration::node::Root> MakeConfiguration() {
    using configuration::Schema;
    auto root = std::make_shared<configuration::node::Root>();
    root->Schema({Schema("settings.web_port", std::uint16_t{8080}, "web port"),
                  Schema("settings.rtsp_port", std::uint16_t{8554}, "RTSP port"),
                  Schema::Collection("channels", {Schema("name", "", "name")}, "channels")});
    root->FromJson(boost::json::parse(R"({"channels": {"1": {"name": "Gate"}, "2": {"name": "Yard <&> Süd"}}})"));
    return root;
}

std::shared_ptr<meta::data::Event> MakeEvent() {
    auto event = std::make_shared<meta::data::Event>("presence", "Gate <&> \"rule\"",
                                                     std::chrono::system_clock::time_point(1'770'000'000s));
    event->Add(std::make_shared<meta::data::Zone>(meta::data::Zone::Field));
    event->Add(std::make_shared<meta::data::Object>(7));
    return event;
}

/// A device with two channels, shared by all inputs.
class Device {
public:
    Device() : ha1(authentication::MakeHa1("admin", authentication::Realm, Password)) {
        logging::SetLevel(logging::Level::Critical);
        engine.SetHa1(ha1);
        manager.UpdateServerPort(8080);
    }

    /// Sends the requests in order and removes all subscriptions.
    void Run(std::vector<ScriptedRequest> requests) {
        for (auto& request : requests) Run(std::move(request));
        EndSubscriptions();
    }

private:
    void Run(ScriptedRequest request) {
        if (auto const at = request.target.find("Idx=@"); at != std::string::npos) {
            request.target.replace(at + 4, 1, std::to_string(subscriptions.empty() ? 0 : *subscriptions.rbegin()));
        }
        if (request.target.size() > LongestTarget) return; // the web server refuses it
        if (request.isSigned) Sign(request);
        if (request.hasEvent) onvif::events::Publish(MakeEvent());
        engine.SetEnabled(!request.isOpen);
        bool const isKnown = request.isOpen || request.isSigned;
        bool const tells = HasCredentials(request); // libFuzzer learns credentials from comparisons
        auto const data = Ask(std::move(request));
        if (!data) return CheckFailures();
        auto const body = Check(*data, isKnown);
        Require(tells || !HasCredentials(body), "an answer holds no credentials");
    }

    void Sign(ScriptedRequest& request) const {
        auto const response = authentication::MakeDigestResponse({.ha1 = ha1,
                                                                  .method = "POST",
                                                                  .uri = request.target,
                                                                  .nonce = "0123456789abcdef",
                                                                  .nc = "00000001",
                                                                  .cnonce = "fedcba98",
                                                                  .qop = "auth"});
        request.fields["Authorization"] = std::string("Digest username=\"admin\", realm=\"") + authentication::Realm +
                                          "\", nonce=\"0123456789abcdef\", uri=\"" + request.target +
                                          "\", qop=auth, nc=00000001, cnonce=\"fedcba98\", response=\"" + response +
                                          "\"";
    }

    /// The answer; nullopt when the operation throws.
    std::optional<Pending::Data> Ask(ScriptedRequest request) try {
        auto const pending = manager.Post(std::make_shared<Request>(std::move(request)));
        auto const start = std::chrono::steady_clock::now();
        bool hasEvent = false;
        for (;;) {
            auto data = pending->GetData();
            if (data.GetState() == web::response::State::Complete) return data;
            auto const waited = std::chrono::steady_clock::now() - start;
            Require(waited < GiveUpAfter, "a request is answered in time");
            if (waited > EventAfter && !std::exchange(hasEvent, true)) onvif::events::Publish(MakeEvent());
            if (waited > EndAfter) EndSubscriptions();
            std::this_thread::yield();
        }

    } catch (std::future_error const& error) {

        Require(error.code() == std::future_errc::broken_promise, "only an exception takes the answer away");
        return std::nullopt;
    }

    /// Operations with an invalid time, or a token that does not name a channel, end in an exception, which is logged
    /// at most once per second.
    void CheckFailures() const {
        for (auto const& line : failures.GetLines()) {
            bool const isKnown = line.text.find("ISO 8601 ") != std::string::npos ||
                                 line.text.find(" zarn.configuration.node.") != std::string::npos;
            if (!isKnown) std::fprintf(stderr, "%s\n", line.text.c_str());
            Require(isKnown, "an operation ends in an exception only when that is how it refuses");
        }
    }

    void EndSubscriptions() {
        for (auto const id : std::exchange(subscriptions, {})) {
            ScriptedRequest request{.target = "/onvif/event_service/Subscription?Idx=" + std::to_string(id)};
            request.fields = {{"Host", "device"}, {"Content-Type", "application/soap+xml"}};
            request.body = R"(<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope"><s:Body>)"
                           R"(<Unsubscribe xmlns="http://docs.oasis-open.org/wsn/b-2"/></s:Body></s:Envelope>)";
            Sign(request);
            auto const data = Ask(std::move(request));
            Require(data && static_cast<int>(data->GetStatus()) == 200, "a subscription can be ended");
        }
    }

    bool HasCredentials(std::string_view text) const {
        return text.find(Password) != std::string::npos || text.find(ha1) != std::string::npos;
    }

    bool HasCredentials(ScriptedRequest const& request) const {
        auto const inField = [&](auto const& field) {
            return HasCredentials(field.first) || HasCredentials(field.second);
        };
        return HasCredentials(request.target) || HasCredentials(request.body) ||
               std::ranges::any_of(request.fields, inField);
    }

    /// Returns the body.
    std::string Check(Pending::Data const& data, bool isKnown) {
        for (auto const& [name, value] : data.GetFields()) {
            constexpr std::string_view LineEnds("\0\r\n", 3);
            Require(name.find_first_of(LineEnds) == std::string::npos, "the name of a field is in one line");
            Require(value.find_first_of(LineEnds) == std::string::npos, "a field is one line");
        }
        std::string body;
        for (auto const& chunk : data.GetBody()) body += chunk->ToStringView();
        Require(body.size() <= LongestAnswer, "an answer is bounded");
        if (body.empty()) return body;
        pugi::xml_document document;
        Require(document.load_buffer(body.data(), body.size(), pugi::parse_default, pugi::encoding_utf8),
                "an answer is XML");
        Require(IsXmlText(body), "an answer holds no characters that XML cannot carry");
        Remember(body);
        if (static_cast<int>(data.GetStatus()) == 200 && !isKnown) CheckOpen(document);
        return body;
    }

    /// Answers that need no login.
    static void CheckOpen(pugi::xml_document const& document) {
        auto const message = document.document_element().child("SOAP-ENV:Body").first_child();
        Require(IsOpenAnswer(message.name()), "the answer of an operation with a login needs credentials");
    }

    /// Remembers the subscription in an answer.
    void Remember(std::string_view body) {
        constexpr std::string_view Marker = "Subscription?Idx=";
        auto const found = body.find(Marker);
        if (found == std::string_view::npos) return;
        std::int32_t id = 0;
        auto const digits = body.substr(found + Marker.size());
        if (std::from_chars(digits.data(), digits.data() + digits.size(), id).ec == std::errc())
            subscriptions.insert(id);
    }

    logging::Capture const failures{logging::Level::Error};
    std::string ha1;
    ZarnAuthenticationEngine engine;
    std::set<std::int32_t> subscriptions;
    service::onvif::Manager manager{
        &engine, MakeConfiguration(),
        [](std::string const& id) {
            return id == "1" ? meta::data::VideoInfo({1920, 1080}, "video/x-h264", 25, 1) : meta::data::VideoInfo();
        },
        utilities::name::Config({.manufacturer = "Zarnsuite", .model = "Analytics Server", .name = "Gate <&>"})};
};

} // namespace
} // namespace zarn::fuzz

/// Every request gets a timely, bounded answer with well-formed XML (or no body) and valid header fields. Answers never
/// contain credentials, and protected content requires a login.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    using namespace zarn::fuzz;
    if (size > MaximumLength) return 0;
    static Device device;
    device.Run(ReadScript({reinterpret_cast<char const*>(data), size}, MaximumRequests));
    return 0;
}
