#include "bare_exchange.h"

#include <service/onvif/soap_context.h>
#include <zarn/protocol/network/http/request.h>

#include <httpda.h>
#include <soapH.h>

namespace zarn::bench {

std::string ToText(Request const& request) {
    protocol::network::http::Request const message(request.GetMethod(), request.GetTarget(), request.GetBody(),
                                                   request.GetFields());
    return message.GetText();
}

BareExchange::BareExchange(std::string const& request) : context(service::onvif::MakeSoapContext()) {
    auto* const soap = GetContext();
    soap_register_plugin_arg(soap, http_da, http_da_md5());
    soap->is = &input;
    soap->os = &output;
    input << request << std::endl;
}

bool BareExchange::Begin() { return soap_begin_serve(GetContext()) == SOAP_OK; }

} // namespace zarn::bench
