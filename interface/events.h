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

/// The tree of topics: an element each, marked with wstop:topic.
class wstop__TopicSetType
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
    @ xsd__anyURI Dialect 1;
    xsd__anyType  __mixed 0;
};

class wsnt__NotificationMessageHolderType
{ public:
    wsnt__TopicExpressionType*   Topic                 0;
    class _wsnt__NotificationMessageHolderType_Message
    { public:
        xsd__anyType             __any                 0;
    }                            Message               1;
};

// Capabilities

class tev__Capabilities
{ public:
    @ bool* WSSubscriptionPolicySupport                   0;
    @ bool* WSPullPointSupport                            0;
    @ bool* WSPausableSubscriptionManagerInterfaceSupport 0;
    @ int*  MaxNotificationProducers                      0;
    @ int*  MaxPullPoints                                 0;
    @ bool* PersistentNotificationStorage                 0;
};

// Messages

class _tev__GetServiceCapabilitiesResponse
{ public:
    tev__Capabilities* Capabilities 1;
};

class _tev__GetEventPropertiesResponse
{ public:
    std::vector<xsd__anyURI>  TopicNamespaceLocation          1;
    bool                      wsnt__FixedTopicSet             1 = true;
    wstop__TopicSetType*      wstop__TopicSet                 1;
    std::vector<xsd__anyURI>  wsnt__TopicExpressionDialect    1;
    std::vector<xsd__anyURI>  MessageContentFilterDialect     1;
    std::vector<xsd__anyURI>  MessageContentSchemaLocation    1;
};

class _tev__CreatePullPointSubscription
{ public:
    wsnt__FilterType*                 Filter                 0;
    wsnt__AbsoluteOrRelativeTimeType* InitialTerminationTime 0;
};

class _tev__CreatePullPointSubscriptionResponse
{ public:
    wsa5__EndpointReferenceType SubscriptionReference 1;
    time_t                      wsnt__CurrentTime     1;
    time_t                      wsnt__TerminationTime 1;
};

class _tev__PullMessages
{ public:
    xsd__duration Timeout      1;
    int           MessageLimit 1;
};

class _tev__PullMessagesResponse
{ public:
    time_t                                            CurrentTime               1;
    time_t                                            TerminationTime           1;
    std::vector<wsnt__NotificationMessageHolderType*> wsnt__NotificationMessage 0;
};

class _wsnt__Renew
{ public:
    wsnt__AbsoluteOrRelativeTimeType* TerminationTime nullptr 1;
};

class _wsnt__RenewResponse
{ public:
    time_t  TerminationTime 1;
    time_t* CurrentTime     0;
};
