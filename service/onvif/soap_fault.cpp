#include "soap_fault.h"

#include <soapH.h>

#include <iterator>

namespace zarn::service::onvif {

namespace {

SOAP_ENV__Code* MakeSubcode(soap* soap, char const* text, SOAP_ENV__Code* inner) {
    SOAP_ENV__Code* code = soap_new_SOAP_ENV__Code(soap);
    if (!code) return nullptr;
    soap_default_SOAP_ENV__Code(soap, code);
    code->SOAP_ENV__Value = soap_strdup(soap, text);
    code->SOAP_ENV__Subcode = inner;
    return code;
}

} // namespace

int SetFault(soap* soap, FaultCode code, char const* reason, std::initializer_list<char const*> subcodes) {
    if (code == FaultCode::Sender)
        soap_sender_fault(soap, reason, nullptr);
    else
        soap_receiver_fault(soap, reason, nullptr);

    SOAP_ENV__Code* chain = nullptr;
    for (auto subcode = std::rbegin(subcodes); subcode != std::rend(subcodes); ++subcode)
        chain = MakeSubcode(soap, *subcode, chain);
    if (soap->fault && soap->fault->SOAP_ENV__Code) soap->fault->SOAP_ENV__Code->SOAP_ENV__Subcode = chain;
    return SOAP_FAULT;
}

void SendFault(soap* soap) {
    // When there was no memory for a longer look-aside buffer, gSOAP has none but still its length, and would write the
    // names of the fault to where it was.
    if (!soap->labbuf) soap->lablen = soap->labidx = 0;
    soap_send_fault(soap);
}

int NotSupported(soap* soap) { return SoapFault(soap, FaultCode::Receiver, "Not supported", "ter:ActionNotSupported"); }

} // namespace zarn::service::onvif
