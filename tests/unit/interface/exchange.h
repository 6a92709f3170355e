#pragma once

#include <stdsoap2.h>

#include <memory>
#include <sstream>
#include <string>

namespace zarn::bindings {

struct ContextDeleter {
    void operator()(soap* context) const;
};

using Context = std::unique_ptr<soap, ContextDeleter>;

/// A context with the modes used for serving requests: no xsi:type, DOM text unchanged, strings in UTF-8.
Context MakeContext();

/// A SOAP 1.2 envelope. Its own elements and the body use the prefixes of the namespace table. The prefix "c" is also
/// bound to the envelope's namespace, and "security" to the WS-Security namespace.
std::string Envelope(std::string const& body, std::string const& header = "");

/// Result of serving one request.
struct Outcome {
    int status;           ///< from soap_begin_serve, otherwise from dispatch
    std::string response; ///< HTTP response; empty when nothing was sent

    /// The envelope without its namespace declarations.
    std::string Body() const;
};

/// Removes the namespace declarations from a response or written object.
std::string WithoutNamespaces(std::string text);

/// Passes the envelope to the context as an HTTP request and lets the service handle it.
template <class Service>
Outcome Serve(soap* context, Service& service, std::string const& envelope) {
    std::istringstream in("POST /onvif/service HTTP/1.1\r\nHost: localhost\r\n"
                          "Content-Type: application/soap+xml; charset=utf-8\r\nContent-Length: " +
                          std::to_string(envelope.size()) + "\r\n\r\n" + envelope);
    std::ostringstream out;
    context->is = &in;
    context->os = &out;
    int status = soap_begin_serve(context);
    if (status == SOAP_OK) {
        status = service.dispatch();
    }
    context->is = nullptr;
    context->os = nullptr;
    return {status, out.str()};
}

/// A generated object as XML in the element `tag`.
template <class Object>
std::string Write(soap* context, Object const& object, char const* tag) {
    std::ostringstream out;
    context->os = &out;
    int status = soap_begin_send(context);
    if (status == SOAP_OK) {
        object.soap_serialize(context);
        status = object.soap_put(context, tag, "");
    }
    if (status == SOAP_OK) {
        status = soap_end_send(context);
    }
    context->os = nullptr;
    return status == SOAP_OK ? out.str() : "gSOAP error " + std::to_string(status);
}

} // namespace zarn::bindings
