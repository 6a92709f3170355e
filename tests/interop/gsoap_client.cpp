#include "gsoap_client.h"

#include <stdexcept>

namespace zarn::test {

void GsoapClient::Free::operator()(struct soap* context) const {
    soap_destroy(context);
    soap_end(context);
    soap_free(context);
}

GsoapClient::GsoapClient(std::string password)
    : password(std::move(password)),
      context(soap_new1(SOAP_IO_KEEPALIVE | SOAP_XML_STRICT | SOAP_C_UTFSTRING)),
      connect(nullptr) {
    if (!context || soap_register_plugin(context.get(), http_da)) throw std::runtime_error("no gSOAP client");
    context->connect_timeout = context->send_timeout = context->recv_timeout = 30;
    context->user = this;
    connect = std::exchange(context->fopen, Connect);
}

GsoapClient::~GsoapClient() { http_da_release(context.get(), &login); }

SOAP_SOCKET GsoapClient::Connect(struct soap* context, char const* endpoint, char const* host, int port) {
    auto& client = *static_cast<GsoapClient*>(context->user);
    ++client.connections;
    return client.connect(context, endpoint, host, port);
}

void GsoapClient::PrepareCall() {
    if (!realm.empty()) http_da_restore(context.get(), &login);
}

bool GsoapClient::LogIn() {
    if (!realm.empty() || !context->authrealm) return false;
    realm = context->authrealm;
    http_da_save(context.get(), &login, realm.c_str(), "admin", password.c_str());
    return true;
}

} // namespace zarn::test
