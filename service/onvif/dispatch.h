#pragma once

#include "soap_context.h"
#include "soap_fault.h"

#include <soapH.h>

namespace zarn::service::onvif {

/// Reads the request from the context's input, lets the first service that knows its operation serve it, and writes the
/// response or the fault to the context's output.
/// services  in the order in which they are asked; each has gSOAP's generated `int dispatch()`
/// Thread: the one that runs the context's exchange.
template <class... Services>
void Dispatch(soap* soap, Services&... services) {
    int status = soap_begin_serve(soap);
    AnswerAddressing(soap);
    if (status != SOAP_OK) {
        SendFault(soap);
        return;
    }
    // Kept whole before it is sent: else gSOAP writes all of it twice, once to count its bytes, and hands the stream
    // every name and bracket for itself.
    soap_set_omode(soap, SOAP_IO_STORE);
    status = SOAP_NO_METHOD;
    (void)(((status = services.dispatch()) == SOAP_NO_METHOD) && ...);
    SendFault(soap);
    // The fault of an operation is written twice, on purpose; the reader of the output takes the first response.
    if (status != SOAP_OK && status != SOAP_NO_METHOD) SendFault(soap);
}

} // namespace zarn::service::onvif
