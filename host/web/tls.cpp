#include "host/web/tls.h"

#include <boost/system/system_error.hpp>
#include <openssl/ssl.h>

#include <cstddef>
#include <stdexcept>

namespace zarn::host::web {

namespace ssl = boost::asio::ssl;

std::shared_ptr<ssl::context> MakeTlsContext(std::string const& certificate, std::string const& privateKey) {
    auto context = std::make_shared<ssl::context>(ssl::context::tls_server);
    context->set_options(ssl::context::default_workarounds | ssl::context::no_compression);
    SSL_CTX_set_min_proto_version(context->native_handle(), TLS1_2_VERSION);
    // A client must not be able to make the server repeat the costly part of the handshake.
    SSL_CTX_set_options(context->native_handle(), SSL_OP_NO_RENEGOTIATION);
    context->set_password_callback([](std::size_t, ssl::context::password_purpose) { return std::string(); });
    boost::system::error_code error;
    context->use_certificate_chain_file(certificate, error);
    if (error) throw std::runtime_error("certificate " + certificate + " cannot be used: " + error.message());
    context->use_private_key_file(privateKey, ssl::context::pem, error);
    if (error) throw std::runtime_error("private key " + privateKey + " cannot be used: " + error.message());
    // Reading the key compares it with a certificate of its own type only.
    if (SSL_CTX_check_private_key(context->native_handle()) != 1) {
        throw std::runtime_error("private key " + privateKey + " does not belong to certificate " + certificate);
    }
    return context;
}

} // namespace zarn::host::web
