#pragma once

#include <initializer_list>

struct soap;

namespace zarn::service::onvif {

/// Which side causes a fault (SOAP 1.2 Part 1, 5.4.6).
enum class FaultCode {
    Sender = 0,   ///< the request: "env:Sender"
    Receiver = 1, ///< the device cannot serve it: "env:Receiver"
};

/// Sets the context's fault: code, English reason, and the chain of subcodes, the first one outermost (ONVIF Core,
/// Fault codes). A subcode for which there is no memory ends the chain. Always returns SOAP_FAULT.
/// Thread: the one that runs the context's exchange.
int SetFault(soap* soap, FaultCode code, char const* reason, std::initializer_list<char const*> subcodes);

/// Sets the context's fault as SetFault does; an operation returns what this returns: SOAP_FAULT.
/// subcodes  qualified names with a prefix of the namespace table, such as "ter:InvalidArgVal"
template <class... Subcodes>
int SoapFault(soap* soap, FaultCode code, char const* reason, Subcodes... subcodes) {
    return SetFault(soap, code, reason, {subcodes...});
}

/// Writes the context's fault to its output. Thread: the one that runs the context's exchange.
void SendFault(soap* soap);

/// The answer of every operation that this device does not serve: the receiver fault "Not supported" with
/// "ter:ActionNotSupported". Reads nothing of the request.
int NotSupported(soap* soap);

} // namespace zarn::service::onvif
