#pragma once

#include <zarn/protocol/network/http/request.h>

namespace zarn::service::onvif {

/// Whether gSOAP may be given the request: SOAP_OK, or the error that it is to answer with instead.
/// SOAP_OCCURS  the body has more than 512 "=", or words that are followed by white space, and so may have as many
///              attributes: gSOAP keeps the names of all attributes that it has seen and the namespaces in scope in
///              lists, and walks them for each name that it reads, so that a body of a megabyte could keep a worker
///              busy for minutes. No message that is served needs a tenth.
/// SOAP_SYNTAX_ERROR  the body holds a document type declaration, which a SOAP message must not (SOAP 1.2, part 1, 5)
/// 415          the body is compressed (RFC 9110, 15.5.16): gSOAP would inflate it past every bound on its size;
///              or it holds attachments (multipart, DIME), which no message has: gSOAP would answer in the same form,
///              in DIME without the header of an HTTP response
int CheckBounds(protocol::network::http::Request const& request);

} // namespace zarn::service::onvif
