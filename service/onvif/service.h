#pragma once

#include "is_authenticated.h"
#include "soap_fault.h"

#include <zarn/onvif/filled.h>

#include <interface/operations.h>

#include <limits>

namespace zarn::service::onvif {

using zarn::onvif::Append;
using zarn::onvif::Filled;

/// Values that optional members of capability records point at instead of allocating one each. gSOAP's members are
/// pointers to mutable values; nothing ever writes through them, so all threads may share these.
inline bool TrueValue = true;
inline bool FalseValue = false;
inline int IntMax = std::numeric_limits<int>::max();

/// What an operation returns when the request needs credentials and does not carry the right ones.
inline constexpr int Unauthorized = 401;

/// The request of an operation. For an element with xsi:nil="true", which any client can send, gSOAP passes a null
/// pointer; it is treated as an empty element.
template <class Request>
Request const& OrEmpty(Request const* request) {
    static Request const empty;
    return request ? *request : empty;
}

/// What every service shares: it is made for one request, on that request's context and thread. An operation bears the
/// name of the standard, fills the response, whose parts live in the context, and returns SOAP_OK, Unauthorized, or
/// what SoapFault gives for a request that cannot be served. A configuration value of the wrong type is thrown.
///
/// BindingService  the binding that gSOAP generates
template <class BindingService>
class Service : public BindingService {
public:
    using Binding = BindingService;

    Service(struct soap* soap, ZarnAuthenticationEngine const* engine)
        : BindingService(soap), authenticationEngine(engine) {}

    /// Always null: services are never cloned.
    BindingService* copy() final { return nullptr; }

protected:
    /// First argument of an operation whose wrapper has checked the credentials.
    struct Authenticated {};

    /// Called before the login check. A service overloads it for responses whose header must be set even when the check
    /// fails.
    template <class Response>
    void Prepare(Response const&) {}

    ZarnAuthenticationEngine const* authenticationEngine;
};

/// Declares the operations of a service in its class, given as ZARN_DEVICE_OPERATIONS(ZARN_DECLARE): what remains to be
/// defined is each open operation, and each that needs a login with Authenticated as its first argument. Bindings
/// declare every operation pure virtual, so that none can be missing.
#define ZARN_DECLARE(access, prefix, operation, ...) ZARN_DECLARE_##access(operation)

#define ZARN_DECLARE_AS(operation)                                                                                     \
    int operation([[maybe_unused]] bindings::RequestOf<&Binding::operation>* request,                                  \
                  [[maybe_unused]] bindings::ResponseOf<&Binding::operation>& response) override
#define ZARN_DECLARE_Open(operation) ZARN_DECLARE_AS(operation);
#define ZARN_DECLARE_Accepted(operation)                                                                               \
    ZARN_DECLARE_AS(operation) { return SOAP_OK; }
#define ZARN_DECLARE_Login(operation)                                                                                  \
    ZARN_DECLARE_AS(operation) {                                                                                       \
        Prepare(response);                                                                                             \
        if (!IsAuthenticated(soap, authenticationEngine)) return Unauthorized;                                         \
        return operation(Authenticated(), request, response);                                                          \
    }                                                                                                                  \
    int operation(Authenticated, bindings::RequestOf<&Binding::operation>* request,                                    \
                  bindings::ResponseOf<&Binding::operation>& response);
#define ZARN_DECLARE_Unserved(operation)                                                                               \
    ZARN_DECLARE_AS(operation) { return NotSupported(soap); }
#define ZARN_DECLARE_OneWay(operation)                                                                                 \
    int operation(bindings::RequestOf<&Binding::operation>*) override { return NotSupported(soap); }

} // namespace zarn::service::onvif
