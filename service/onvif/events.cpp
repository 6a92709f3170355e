#include "events.h"

#include "device.h"
#include "events/create_base_event.h"
#include "events/types.h"
#include "filter.h"
#include "soap_context.h"

#include <zarn/chrono/add.h>
#include <zarn/chrono/duration/iso8601.h>
#include <zarn/chrono/iso8601.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

namespace zarn::service::onvif {

namespace {

using std::chrono::steady_clock;
using std::chrono::system_clock;

constexpr char PullPointSubscriptionResponseActionURI[] =
    "http://www.onvif.org/ver10/events/wsdl/EventPortType/CreatePullPointSubscriptionResponse";
constexpr char PullMessagesResponseActionURI[] =
    "http://www.onvif.org/ver10/events/wsdl/PullPointSubscription/PullMessagesResponse";

constexpr char TopicNamespaceURI[] = "http://www.onvif.org/onvif/ver10/topic/topicns.xml";
constexpr char ConcreteTopicExpressionURI[] = "http://docs.oasis-open.org/wsn/t-1/TopicExpression/Concrete";
constexpr char OnvifItemFilterURI[] = "http://www.onvif.org/ver10/tev/messageContentFilter/ItemFilter";
constexpr char OnvifSchemaURI[] = "http://www.onvif.org/onvif/ver10/schema/onvif.xsd";

/// Precedes the id in the address of a subscription.
constexpr char SubscriptionMarker[] = "Subscription?Idx=";

/// How long a subscription lasts when its client does not say.
constexpr std::chrono::seconds DefaultLifetime{300};

/// How many events PullMessages takes out of a queue under one lock. Those that it holds are gone for other pulls.
constexpr int MostEventsAtOnce = 64;

/// Thousands may wait for longer than this. Their memory is then worth the time that it takes to get it again.
constexpr std::chrono::seconds LongWait{1};

constexpr std::int32_t NoId = -1;

/// What xsd:dateTime members carry.
time_t ToSeconds(system_clock::time_point time) {
    return std::chrono::duration_cast<std::chrono::seconds>(time.time_since_epoch()).count();
}

/// The id in the request's address; NoId when there is none.
std::int32_t ExtractSubscriptionId(char const* path) {
    char const* const marker = std::strstr(path, SubscriptionMarker);
    if (!marker) return NoId;
    char const* const text = marker + std::strlen(SubscriptionMarker);
    char* end = nullptr;
    errno = 0;
    long const id = std::strtol(text, &end, 10);
    using Limits = std::numeric_limits<std::int32_t>;
    bool const isId = end != text && errno == 0 && id >= Limits::min() && id <= Limits::max();
    return isId ? static_cast<std::int32_t>(id) : NoId;
}

/// The termination time that a client asks for: a span from now when the text begins with "P", else a time; without a
/// text a default. Throws chrono::Error when the text is neither.
system_clock::time_point ReadTermination(std::string const* text, system_clock::time_point now) {
    // White space around it is ignored, as in other times and spans.
    auto const begin = text ? text->find_first_not_of(" \t\r\n") : std::string::npos;
    if (begin == std::string::npos) return now + DefaultLifetime;
    if ((*text)[begin] == 'P') return chrono::Add(now, chrono::duration::FromIso8601(*text, now));
    return chrono::FromIso8601(*text);
}

int CannotExtractId(soap* soap) {
    return SoapFault(soap, FaultCode::Sender, "Unable to extract subscription ID", "ter:InvalidArgs");
}

int NotFound(soap* soap) {
    return SoapFault(soap, FaultCode::Sender, "Subscription ID not found", "ter:InvalidArgVal");
}

} // namespace

EventsService::EventsService(struct soap* soap, URIBase uriBase, ZarnAuthenticationEngine const* engine,
                             std::string_view message)
    : Service(soap, engine), URIBase(uriBase), message(message) {
    Subscription::RegisterForEvents();
}

void EventsService::SetActionHeader(char const* uri) {
    if (!soap->header) soap->header = soap_new_SOAP_ENV__Header(soap);
    if (soap->header) soap->header->wsa5__Action = soap_strdup(soap, uri);
}

void EventsService::Prepare(_tev__CreatePullPointSubscriptionResponse const&) {
    SetActionHeader(PullPointSubscriptionResponseActionURI);
}

void EventsService::Prepare(_tev__PullMessagesResponse const&) { SetActionHeader(PullMessagesResponseActionURI); }

int EventsService::CreatePullPointSubscription(Authenticated, _tev__CreatePullPointSubscription* given,
                                               _tev__CreatePullPointSubscriptionResponse& response) {
    auto const& request = OrEmpty(given);
    auto const termination = ReadTermination(request.InitialTerminationTime, system_clock::now());
    auto const id = Subscription::Create(termination, ReadTopics(request.Filter, message));
    auto const address = GetBaseUri() + EventsServicePath + '/' + SubscriptionMarker + std::to_string(id);
    response.SubscriptionReference.Address = soap_strdup(soap, address.c_str());
    response.wsnt__CurrentTime = ToSeconds(system_clock::now());
    response.wsnt__TerminationTime = ToSeconds(termination);
    return SOAP_OK;
}

bool EventsService::Append(EventPtr const& event, events::WantedTopics const& topics,
                           std::vector<wsnt__NotificationMessageHolderType*>& messages) {
    for (auto const& type : events::Types) {
        auto const* const subtopic = type.selection->Find(*event);
        if (!subtopic) continue;
        if (!type.selection->passesFilters && !topics.Contain(*subtopic)) return false; // before a message is built
        if (type.convert(soap, messages, event, type.name)) return true;
    }
    return false;
}

bool EventsService::WaitForEvents(Subscription& subscription, steady_clock::time_point deadline, EventPtr* oldest) {
    auto const isStopped = [this] { return IsEnding(soap); };
    auto const begin = steady_clock::now();
    if (oldest && deadline > begin + LongWait) {
        if (!subscription.WaitForEvents(begin + LongWait, isStopped, oldest)) return false;
        if (*oldest || isStopped()) return true;
        ReleaseUnusedMemory(soap);
        bool const isAlive = subscription.WaitForEvents(deadline, isStopped, oldest);
        PopulateMemory(soap);
        return isAlive;
    }
    return subscription.WaitForEvents(deadline, isStopped, oldest);
}

int EventsService::PullMessages(Authenticated, _tev__PullMessages* given, _tev__PullMessagesResponse& response) {
    auto const id = ExtractSubscriptionId(soap->path);
    if (id == NoId) return CannotExtractId(soap);
    auto const& request = OrEmpty(given);
    auto const subscription = Subscription::Find(id);
    if (!subscription) return NotFound(soap);
    response.TerminationTime = ToSeconds(subscription->GetTermination());
    bool const wantsEvents = request.MessageLimit > 0;
    auto oldest = wantsEvents ? subscription->Pop() : nullptr;
    if (!oldest && (wantsEvents || !subscription->HasEvents())) {
        auto const deadline = chrono::Add(steady_clock::now(), chrono::duration::FromIso8601(request.Timeout));
        if (!WaitForEvents(*subscription, deadline, wantsEvents ? &oldest : nullptr)) return NotFound(soap);
    }
    std::vector<EventPtr> events;
    if (oldest) events.push_back(std::move(oldest));
    int left = request.MessageLimit;
    // The subscription may end at any time; it then has no more events. No event counts more than once, so that all
    // that are taken also fit.
    while (!events.empty()) {
        for (auto const& event : events) {
            if (Append(event, subscription->GetTopics(), response.wsnt__NotificationMessage)) --left;
        }
        events = subscription->Take(static_cast<std::size_t>(std::min(left, MostEventsAtOnce)));
    }
    response.CurrentTime = ToSeconds(system_clock::now());
    return SOAP_OK;
}

int EventsService::Renew(Authenticated, _wsnt__Renew* given, _wsnt__RenewResponse& response) {
    auto const id = ExtractSubscriptionId(soap->path);
    if (id == NoId) return CannotExtractId(soap);
    auto const subscription = Subscription::Find(id); // before the time is read: without one it does not matter
    if (!subscription) return NotFound(soap);
    auto const now = system_clock::now();
    auto const termination = ReadTermination(OrEmpty(given).TerminationTime, now);
    if (!subscription->Renew(termination)) return NotFound(soap);
    response.TerminationTime = ToSeconds(termination);
    response.CurrentTime = static_cast<time_t*>(soap_malloc(soap, sizeof(time_t)));
    if (response.CurrentTime) *response.CurrentTime = ToSeconds(now);
    return SOAP_OK;
}

int EventsService::Unsubscribe(Authenticated, _wsnt__Unsubscribe*, _wsnt__UnsubscribeResponse&) {
    auto const id = ExtractSubscriptionId(soap->path);
    if (id != NoId) Subscription::End(id);
    return SOAP_OK;
}

int EventsService::GetEventProperties(_tev__GetEventProperties*, _tev__GetEventPropertiesResponse& response) {
    response.TopicNamespaceLocation = {TopicNamespaceURI};
    response.wsnt__FixedTopicSet = false;
    response.wstop__TopicSet = Filled(soap_new_wstop__TopicSetType(soap), [this](wstop__TopicSetType& topics) {
        // Elements know where their parent is: no growing once they have children.
        topics.__any.assign(2, soap_dom_element(soap));
        auto& ruleEngine = topics.__any[0];
        soap_elt_set(&ruleEngine, nullptr, "tns1:RuleEngine");
        for (auto const& type : events::Types) type.describe(soap, ruleEngine, type.name);
        auto& videoSource = topics.__any[1];
        soap_elt_set(&videoSource, nullptr, "tns1:VideoSource");
        soap_att_text(soap_att(soap_elt(&videoSource, nullptr, "MotionAlarm"), nullptr, "wstop:topic"), "true");
    });
    response.wsnt__TopicExpressionDialect = {ConcreteTopicExpressionURI, events::ConcreteTopicSetURI};
    response.MessageContentFilterDialect = {OnvifItemFilterURI};
    response.MessageContentSchemaLocation = {OnvifSchemaURI};
    return SOAP_OK;
}

tev__Capabilities* EventsService::MakeServiceCapabilities(struct soap* soap) {
    return Filled(soap_new_tev__Capabilities(soap), [](tev__Capabilities& capabilities) {
        capabilities.WSSubscriptionPolicySupport = &FalseValue;
        capabilities.WSPullPointSupport = &TrueValue;
        capabilities.WSPausableSubscriptionManagerInterfaceSupport = &FalseValue;
        capabilities.MaxNotificationProducers = &IntMax;
        capabilities.MaxPullPoints = &IntMax;
        capabilities.PersistentNotificationStorage = &FalseValue;
    });
}

int EventsService::GetServiceCapabilities(_tev__GetServiceCapabilities*,
                                          _tev__GetServiceCapabilitiesResponse& response) {
    response.Capabilities = MakeServiceCapabilities(soap);
    return SOAP_OK;
}

} // namespace zarn::service::onvif
