// WS-Addressing 1.0 (wsa5) and the SOAP header, which knows nothing else.
//
// The definitions are the project's own and not gSOAP's wsa5.h, which binds a further prefix and accepts the addressing
// namespace of 2004. What a client puts into its header besides these seven elements is neither kept nor sent back.
// Source: Web Services Addressing 1.0, Core and SOAP Binding.

//gsoap wsa5 schema namespace:     http://www.w3.org/2005/08/addressing
//gsoap wsa5 schema elementForm:   qualified
//gsoap wsa5 schema attributeForm: unqualified

/// Parameters that a client has to send back to an endpoint. No members: this device has none to give.
struct wsa5__ReferenceParametersType
{
};

/// Description of an endpoint. No members: this device neither sends nor reads it.
struct wsa5__MetadataType
{
};

/// Where messages can be sent to.
struct wsa5__EndpointReferenceType
{
    char*                                 Address             1;
    struct wsa5__ReferenceParametersType* ReferenceParameters 0;
    struct wsa5__MetadataType*            Metadata            0;
};
typedef struct wsa5__EndpointReferenceType wsa5__EndpointReferenceType;

/// The MessageID of the message that this one answers.
struct wsa5__RelatesToType
{
    char*   __item;
    @ char* RelationshipType 0;
};

typedef char*                              _wsa5__MessageID;
typedef struct wsa5__RelatesToType         _wsa5__RelatesTo;
typedef struct wsa5__EndpointReferenceType _wsa5__From;
typedef struct wsa5__EndpointReferenceType _wsa5__ReplyTo;
typedef struct wsa5__EndpointReferenceType _wsa5__FaultTo;
typedef char*                              _wsa5__To;
typedef char*                              _wsa5__Action;

/// The header of requests and responses.
mutable struct SOAP_ENV__Header
{
                   _wsa5__MessageID  wsa5__MessageID 0;
                   _wsa5__RelatesTo* wsa5__RelatesTo 0;
                   _wsa5__From*      wsa5__From      0;
    mustUnderstand _wsa5__ReplyTo*   wsa5__ReplyTo   0;
    mustUnderstand _wsa5__FaultTo*   wsa5__FaultTo   0;
    mustUnderstand _wsa5__To         wsa5__To        0;
    mustUnderstand _wsa5__Action     wsa5__Action    0;
};
