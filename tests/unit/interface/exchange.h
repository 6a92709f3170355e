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

/// A context with the modes that requests are served in: no xsi:type, DOM text as it is, strings in UTF-8.
Context MakeContext();

/// A SOAP 1.2 envelope. Its own element and the body use the prefixes of the namespace table; "c" is bound to the
/// namespace of the envelope as well, and "security" to that of WS-Security.
std::string Envelope(std::string const& body, std::string const& header = "");

/// What serving one request gave.
struct Outcome {
    int status;           ///< of soap_begin_serve, else of dispatch
    std::string response; ///< HTTP response; empty when nothing was sent

    /// The part from the envelope on, without the namespace declarations.
    std::string Body() const;
};

/// The text of a response or written object without its namespace declarations.
std::string WithoutNamespaces(std::string text);

/// Feeds the envelope as the body of an HTTP request into the context and lets the service serve it.
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

/// The XML of a generated object as the element `tag`.
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
