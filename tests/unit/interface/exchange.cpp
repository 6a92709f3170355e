#include "exchange.h"

namespace zarn::bindings {

void ContextDeleter::operator()(soap* context) const {
    soap_destroy(context);
    soap_end(context);
    soap_free(context);
}

Context MakeContext() {
    soap_mode const mode = 0x480000 | SOAP_C_UTFSTRING;
    return Context(soap_new2(mode, mode));
}

std::string Envelope(std::string const& body, std::string const& header) {
    return R"(<?xml version="1.0" encoding="UTF-8"?>)"
           R"(<c:Envelope xmlns:c="http://www.w3.org/2003/05/soap-envelope")"
           R"( xmlns:wsa5="http://www.w3.org/2005/08/addressing")"
           R"( xmlns:wsnt="http://docs.oasis-open.org/wsn/b-2")"
           R"( xmlns:tt="http://www.onvif.org/ver10/schema")"
           R"( xmlns:tds="http://www.onvif.org/ver10/device/wsdl")"
           R"( xmlns:trt="http://www.onvif.org/ver10/media/wsdl")"
           R"( xmlns:tr2="http://www.onvif.org/ver20/media/wsdl")"
           R"( xmlns:tev="http://www.onvif.org/ver10/events/wsdl")"
           R"( xmlns:tan="http://www.onvif.org/ver20/analytics/wsdl")"
           R"( xmlns:security="http://docs.oasis-open.org/wss/2004/01/oasis-200401-wss-wssecurity-secext-1.0.xsd">)" +
           (header.empty() ? "" : "<c:Header>" + header + "</c:Header>") + "<c:Body>" + body + "</c:Body></c:Envelope>";
}

std::string Outcome::Body() const {
    auto const end = response.find("\r\n\r\n");
    return end == std::string::npos ? "" : WithoutNamespaces(response.substr(end + 4));
}

std::string WithoutNamespaces(std::string text) {
    if (text.starts_with("<?xml")) {
        text.erase(0, text.find('<', 1));
    }
    for (auto begin = text.find(" xmlns"); begin != std::string::npos; begin = text.find(" xmlns", begin)) {
        auto const value = text.find('"', begin);
        text.erase(begin, text.find('"', value + 1) + 1 - begin);
    }
    return text;
}

} // namespace zarn::bindings
