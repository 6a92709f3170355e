// The event service (tev) with the parts of WS-BaseNotification (wsnt) and WS-Topics (wstop) that it builds on. The
// bindings of the WSDL are one class: the operations of all of them are declared for tev, and a name that occurs in
// several gets an underscore each time. The element of the message decides, so that the first one serves it.
// Source: ONVIF Core Specification, event.wsdl; OASIS WS-BaseNotification 1.3; OASIS WS-Topics 1.3.

#import "schema.h"

//gsoap wsnt schema namespace:     http://docs.oasis-open.org/wsn/b-2
//gsoap wsnt schema elementForm:   qualified
//gsoap wsnt schema attributeForm: unqualified

//gsoap wstop schema namespace:     http://docs.oasis-open.org/wsn/t-1
//gsoap wstop schema elementForm:   qualified
//gsoap wstop schema attributeForm: unqualified

//gsoap tev schema namespace:     http://www.onvif.org/ver10/events/wsdl
//gsoap tev schema elementForm:   qualified
//gsoap tev schema attributeForm: unqualified

//gsoap tev service name:      PullPointSubscriptionBinding
//gsoap tev service type:      PullPointSubscription
//gsoap tev service namespace: http://www.onvif.org/ver10/events/wsdl
//gsoap tev service transport: http://schemas.xmlsoap.org/soap/http

// Topics

class wstop__Documentation
{ public:
    std::vector<xsd__anyType> __any   0;
    xsd__anyType              __mixed 0;
};

class wstop__ExtensibleDocumented
{ public:
    wstop__Documentation* documentation 0;
    @ xsd__anyAttribute   __anyAttribute;
};

/// The tree of topics: an element each, marked with wstop:topic.
class wstop__TopicSetType : public wstop__ExtensibleDocumented
{ public:
    std::vector<xsd__anyType> __any 0;
};

// Notifications

/// A duration or a point in time, both as XML Schema writes them.
typedef std::string wsnt__AbsoluteOrRelativeTimeType;

/// What a subscriber wants to get: any number of topic expressions and message content filters.
class wsnt__FilterType
{ public:
    std::vector<xsd__anyType> __any 0;
};

/// The text of the expression is that of __mixed.
class wsnt__TopicExpressionType
{ public:
    xsd__anyType        __any   0;
    @ xsd__anyURI       Dialect 1;
    @ xsd__anyAttribute __anyAttribute;
    xsd__anyType        __mixed 0;
};

class wsnt__NotificationMessageHolderType
{ public:
    wsa5__EndpointReferenceType* SubscriptionReference 0;
    wsnt__TopicExpressionType*   Topic                 0;
    wsa5__EndpointReferenceType* ProducerReference     0;
    class _wsnt__NotificationMessageHolderType_Message
    { public:
        xsd__anyType             __any                 0;
    }                            Message               1;
};

// Capabilities

class tev__Capabilities
{ public:
    std::vector<xsd__anyType> __any                                         0;
    @ bool*                   WSSubscriptionPolicySupport                   0;
    @ bool*                   WSPullPointSupport                            0;
    @ bool*                   WSPausableSubscriptionManagerInterfaceSupport 0;
    @ int*                    MaxNotificationProducers                      0;
    @ int*                    MaxPullPoints                                 0;
    @ bool*                   PersistentNotificationStorage                 0;
    @ std::string*            EventBrokerProtocols                          0;
    @ int*                    MaxEventBrokers                               0;
    @ bool*                   MetadataOverMQTT                              0;
    @ xsd__anyAttribute       __anyAttribute;
};

// Messages of the served operations

class _tev__GetServiceCapabilities
{ public:
};

class _tev__GetServiceCapabilitiesResponse
{ public:
    tev__Capabilities* Capabilities 1;
};

class _tev__GetEventProperties
{ public:
};

class _tev__GetEventPropertiesResponse
{ public:
    std::vector<xsd__anyURI>  TopicNamespaceLocation          1;
    bool                      wsnt__FixedTopicSet             1 = true;
    wstop__TopicSetType*      wstop__TopicSet                 1;
    std::vector<xsd__anyURI>  wsnt__TopicExpressionDialect    1;
    std::vector<xsd__anyURI>  MessageContentFilterDialect     1;
    std::vector<xsd__anyURI>  ProducerPropertiesFilterDialect 0;
    std::vector<xsd__anyURI>  MessageContentSchemaLocation    1;
    std::vector<xsd__anyType> __any                           0;
};

class _tev__CreatePullPointSubscription
{ public:
    wsnt__FilterType*                 Filter                 0;
    wsnt__AbsoluteOrRelativeTimeType* InitialTerminationTime 0;
    class _tev__CreatePullPointSubscription_SubscriptionPolicy
    { public:
        std::vector<xsd__anyType>     __any                  0;
    }*                                SubscriptionPolicy     0;
    std::vector<xsd__anyType>         __any                  0;
};

class _tev__CreatePullPointSubscriptionResponse
{ public:
    wsa5__EndpointReferenceType SubscriptionReference 1;
    time_t                      wsnt__CurrentTime     1;
    time_t                      wsnt__TerminationTime 1;
    std::vector<xsd__anyType>   __any                 0;
};

class _tev__PullMessages
{ public:
    xsd__duration             Timeout      1;
    int                       MessageLimit 1;
    std::vector<xsd__anyType> __any        0;
};

class _tev__PullMessagesResponse
{ public:
    time_t                                            CurrentTime               1;
    time_t                                            TerminationTime           1;
    std::vector<wsnt__NotificationMessageHolderType*> wsnt__NotificationMessage 0;
};

class _tev__SetSynchronizationPoint
{ public:
};

class _tev__SetSynchronizationPointResponse
{ public:
};

class _wsnt__Renew
{ public:
    wsnt__AbsoluteOrRelativeTimeType* TerminationTime nullptr 1;
    std::vector<xsd__anyType>         __any           0;
};

class _wsnt__RenewResponse
{ public:
    time_t                    TerminationTime 1;
    time_t*                   CurrentTime     0;
    std::vector<xsd__anyType> __any           0;
};

class _wsnt__Unsubscribe
{ public:
    std::vector<xsd__anyType> __any 0;
};

class _wsnt__UnsubscribeResponse
{ public:
    std::vector<xsd__anyType> __any 0;
};

// Messages of the operations that are not served

typedef tt__UnservedMessage _tev__Seek, _tev__SeekResponse, _wsnt__Subscribe, _wsnt__SubscribeResponse,
    _wsnt__GetCurrentMessage, _wsnt__GetCurrentMessageResponse, _wsnt__Notify, _wsnt__GetMessages,
    _wsnt__GetMessagesResponse, _wsnt__DestroyPullPoint, _wsnt__DestroyPullPointResponse, _wsnt__CreatePullPoint,
    _wsnt__CreatePullPointResponse, _wsnt__PauseSubscription, _wsnt__PauseSubscriptionResponse,
    _wsnt__ResumeSubscription, _wsnt__ResumeSubscriptionResponse;

// Served operations

//gsoap tev service method-input-action: PullMessages http://www.onvif.org/ver10/events/wsdl/PullPointSubscription/PullMessagesRequest
int __tev__PullMessages(_tev__PullMessages* tev__PullMessages, _tev__PullMessagesResponse& tev__PullMessagesResponse);
//gsoap tev service method-input-action: SetSynchronizationPoint http://www.onvif.org/ver10/events/wsdl/PullPointSubscription/SetSynchronizationPointRequest
int __tev__SetSynchronizationPoint(_tev__SetSynchronizationPoint* tev__SetSynchronizationPoint,
    _tev__SetSynchronizationPointResponse& tev__SetSynchronizationPointResponse);
//gsoap tev service method-input-action: Unsubscribe http://docs.oasis-open.org/wsn/bw-2/SubscriptionManager/UnsubscribeRequest
int __tev__Unsubscribe(_wsnt__Unsubscribe* wsnt__Unsubscribe, _wsnt__UnsubscribeResponse& wsnt__UnsubscribeResponse);
//gsoap tev service method-input-action: GetServiceCapabilities http://www.onvif.org/ver10/events/wsdl/EventPortType/GetServiceCapabilitiesRequest
int __tev__GetServiceCapabilities(_tev__GetServiceCapabilities* tev__GetServiceCapabilities,
    _tev__GetServiceCapabilitiesResponse& tev__GetServiceCapabilitiesResponse);
//gsoap tev service method-input-action: CreatePullPointSubscription http://www.onvif.org/ver10/events/wsdl/EventPortType/CreatePullPointSubscriptionRequest
int __tev__CreatePullPointSubscription(_tev__CreatePullPointSubscription* tev__CreatePullPointSubscription,
    _tev__CreatePullPointSubscriptionResponse& tev__CreatePullPointSubscriptionResponse);
//gsoap tev service method-input-action: GetEventProperties http://www.onvif.org/ver10/events/wsdl/EventPortType/GetEventPropertiesRequest
int __tev__GetEventProperties(_tev__GetEventProperties* tev__GetEventProperties,
    _tev__GetEventPropertiesResponse& tev__GetEventPropertiesResponse);
//gsoap tev service method-input-action: Renew http://docs.oasis-open.org/wsn/bw-2/SubscriptionManager/RenewRequest
int __tev__Renew(_wsnt__Renew* wsnt__Renew, _wsnt__RenewResponse& wsnt__RenewResponse);

// Operations that are not served

//gsoap tev service method-input-action: Seek http://www.onvif.org/ver10/events/wsdl/PullPointSubscription/SeekRequest
int __tev__Seek(_tev__Seek* tev__Seek, _tev__SeekResponse& tev__SeekResponse);
//gsoap tev service method-input-action: Unsubscribe_ http://docs.oasis-open.org/wsn/bw-2/SubscriptionManager/UnsubscribeRequest
int __tev__Unsubscribe_(_wsnt__Unsubscribe* wsnt__Unsubscribe, _wsnt__UnsubscribeResponse& wsnt__UnsubscribeResponse);
//gsoap tev service method-input-action: Subscribe http://docs.oasis-open.org/wsn/bw-2/NotificationProducer/SubscribeRequest
int __tev__Subscribe(_wsnt__Subscribe* wsnt__Subscribe, _wsnt__SubscribeResponse& wsnt__SubscribeResponse);
//gsoap tev service method-input-action: GetCurrentMessage http://docs.oasis-open.org/wsn/bw-2/NotificationProducer/GetCurrentMessageRequest
int __tev__GetCurrentMessage(_wsnt__GetCurrentMessage* wsnt__GetCurrentMessage,
    _wsnt__GetCurrentMessageResponse& wsnt__GetCurrentMessageResponse);
//gsoap tev service method-input-action: Notify http://docs.oasis-open.org/wsn/bw-2/NotificationConsumer/Notify
int __tev__Notify(_wsnt__Notify* wsnt__Notify, void);
//gsoap tev service method-input-action: GetMessages http://docs.oasis-open.org/wsn/bw-2/PullPoint/GetMessagesRequest
int __tev__GetMessages(_wsnt__GetMessages* wsnt__GetMessages, _wsnt__GetMessagesResponse& wsnt__GetMessagesResponse);
//gsoap tev service method-input-action: DestroyPullPoint http://docs.oasis-open.org/wsn/bw-2/PullPoint/DestroyPullPointRequest
int __tev__DestroyPullPoint(_wsnt__DestroyPullPoint* wsnt__DestroyPullPoint,
    _wsnt__DestroyPullPointResponse& wsnt__DestroyPullPointResponse);
//gsoap tev service method-input-action: Notify_ http://docs.oasis-open.org/wsn/bw-2/PullPoint/Notify
int __tev__Notify_(_wsnt__Notify* wsnt__Notify, void);
//gsoap tev service method-input-action: CreatePullPoint http://docs.oasis-open.org/wsn/bw-2/CreatePullPoint/CreatePullPointRequest
int __tev__CreatePullPoint(_wsnt__CreatePullPoint* wsnt__CreatePullPoint,
    _wsnt__CreatePullPointResponse& wsnt__CreatePullPointResponse);
//gsoap tev service method-input-action: Renew_ http://docs.oasis-open.org/wsn/bw-2/PausableSubscriptionManager/RenewRequest
int __tev__Renew_(_wsnt__Renew* wsnt__Renew, _wsnt__RenewResponse& wsnt__RenewResponse);
//gsoap tev service method-input-action: Unsubscribe__ http://docs.oasis-open.org/wsn/bw-2/PausableSubscriptionManager/UnsubscribeRequest
int __tev__Unsubscribe__(_wsnt__Unsubscribe* wsnt__Unsubscribe, _wsnt__UnsubscribeResponse& wsnt__UnsubscribeResponse);
//gsoap tev service method-input-action: PauseSubscription http://docs.oasis-open.org/wsn/bw-2/PausableSubscriptionManager/PauseSubscriptionRequest
int __tev__PauseSubscription(_wsnt__PauseSubscription* wsnt__PauseSubscription,
    _wsnt__PauseSubscriptionResponse& wsnt__PauseSubscriptionResponse);
//gsoap tev service method-input-action: ResumeSubscription http://docs.oasis-open.org/wsn/bw-2/PausableSubscriptionManager/ResumeSubscriptionRequest
int __tev__ResumeSubscription(_wsnt__ResumeSubscription* wsnt__ResumeSubscription,
    _wsnt__ResumeSubscriptionResponse& wsnt__ResumeSubscriptionResponse);
