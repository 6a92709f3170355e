#include "host/web/tls.h"

#include <boost/system/system_error.hpp>
#include <openssl/ssl.h>

#include <cstddef>
#include <stdexcept>

namespace zarn::host::web {

namespace ssl = boost::asio::ssl;

namespace {

/// Where the configuration names the files.
constexpr char const* CertificatePath = "settings.tls.certificate";
constexpr char const* PrivateKeyPath = "settings.tls.private_key";

std::runtime_error Unusable(std::string const& setting, std::string const& file, std::string const& why) {
    return std::runtime_error(setting + ": " + file + " cannot be used: " + why);
}

} // namespace

std::shared_ptr<ssl::context> MakeTlsContext(std::string const& certificate, std::string const& privateKey) {
    auto context = std::make_shared<ssl::context>(ssl::context::tls_server);
    context->set_options(ssl::context::default_workarounds | ssl::context::no_compression);
    SSL_CTX_set_min_proto_version(context->native_handle(), TLS1_2_VERSION);
    // A client must not be able to make the server repeat the costly part of the handshake.
    SSL_CTX_set_options(context->native_handle(), SSL_OP_NO_RENEGOTIATION);
    context->set_password_callback([](std::size_t, ssl::context::password_purpose) { return std::string(); });
    boost::system::error_code error;
    context->use_certificate_chain_file(certificate, error);
    if (error) throw Unusable(CertificatePath, certificate, error.message());
    context->use_private_key_file(privateKey, ssl::context::pem, error);
    if (error) throw Unusable(PrivateKeyPath, privateKey, error.message());
    // Reading the key compares it with a certificate of its own type only.
    if (SSL_CTX_check_private_key(context->native_handle()) != 1) {
        throw Unusable(PrivateKeyPath, privateKey, "it does not belong to the certificate " + certificate);
    }
    return context;
}

} // namespace zarn::host::web
