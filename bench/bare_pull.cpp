#include "bare_pull.h"

#include "bare_exchange.h"
#include "operations.h"

#include <interface/operations.h>
#include <soapPullPointSubscriptionBindingService.h>

#include <cstddef>
#include <ctime>
#include <string>

namespace zarn::bench {

namespace {

using Binding = PullPointSubscriptionBindingService;

void AddItem(tt__ItemList* items, char const* name, char const* value) {
    auto& item = items->SimpleItem.emplace_back();
    item.Name = name;
    item.Value = value;
}

wsnt__NotificationMessageHolderType* MakeMessage(soap* soap) {
    auto* const holder = soap_new_wsnt__NotificationMessageHolderType(soap);
    auto* const topic = holder->Topic = soap_new_wsnt__TopicExpressionType(soap);
    topic->Dialect = "http://www.onvif.org/ver10/tev/topicExpression/ConcreteSet";
    topic->__mixed.soap = soap; // which owns the text
    soap_elt_text(&topic->__mixed, "tns1:RuleEngine/CountAggregation/Counter");
    auto* const message = soap_new_tt__Message(soap);
    message->UtcTime = std::time(nullptr);
    message->PropertyOperation = soap_new_tt__PropertyOperation(soap);
    *message->PropertyOperation = tt__PropertyOperation__Changed;
    message->Source = soap_new_tt__ItemList(soap);
    AddItem(message->Source, "VideoSource", "channels.4294967295");
    AddItem(message->Source, "Rule", "");
    message->Data = soap_new_tt__ItemList(soap);
    AddItem(message->Data, "ObjectId", "");
    AddItem(message->Data, "Count", "1");
    soap_elt_node(&holder->Message.__any, message, SOAP_TYPE__tt__Message);
    return holder;
}

/// A pull point that always has one message, and no other operation.
class PullPoint final : public Binding {
public:
    using Binding::Binding;

    Binding* copy() override { return nullptr; }

#define ZARN_ANSWER(access, prefix, operation, ...) ZARN_ANSWER_##access(operation)
#define ZARN_ANSWER_TWO_WAY(operation)                                                                                 \
    int operation(bindings::RequestOf<&Binding::operation>*, bindings::ResponseOf<&Binding::operation>& response)      \
        override {                                                                                                     \
        return Answer(response);                                                                                       \
    }
#define ZARN_ANSWER_Open(operation) ZARN_ANSWER_TWO_WAY(operation)
#define ZARN_ANSWER_Login(operation) ZARN_ANSWER_TWO_WAY(operation)
#define ZARN_ANSWER_Accepted(operation) ZARN_ANSWER_TWO_WAY(operation)
#define ZARN_ANSWER_Unserved(operation) ZARN_ANSWER_TWO_WAY(operation)
#define ZARN_ANSWER_OneWay(operation)                                                                                  \
    int operation(bindings::RequestOf<&Binding::operation>*) override { return SOAP_NO_METHOD; }
    ZARN_EVENTS_OPERATIONS(ZARN_ANSWER)

private:
    template <class Response>
    int Answer(Response&) {
        return SOAP_NO_METHOD;
    }

    int Answer(_tev__PullMessagesResponse& response) {
        soap->header = soap_new_SOAP_ENV__Header(soap);
        soap->header->wsa5__Action =
            soap_strdup(soap, "http://www.onvif.org/ver10/events/wsdl/PullPointSubscription/PullMessagesResponse");
        response.CurrentTime = std::time(nullptr);
        response.TerminationTime = response.CurrentTime + 3600;
        response.wsnt__NotificationMessage.push_back(MakeMessage(soap));
        return SOAP_OK;
    }
};

} // namespace

std::size_t ExchangeBarePull() {
    static std::string const text = ToText(Request(PullMessages, "/onvif/events_service/Subscription?Idx=1"));
    BareExchange exchange(text);
    PullPoint pullPoint(exchange.GetContext());
    return exchange.Complete(pullPoint).size();
}

} // namespace zarn::bench
