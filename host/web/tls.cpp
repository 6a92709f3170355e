#include "host/web/tls.h"

#include <zarn/configuration/error.h>
#include <zarn/configuration/node/primitive.h>
#include <zarn/logging/logger.h>

#include <boost/system/system_error.hpp>
#include <openssl/ssl.h>
#include <openssl/x509.h>

#include <cstddef>
#include <stdexcept>

namespace zarn::host::web {

namespace ssl = boost::asio::ssl;

namespace {

constexpr char const* CertificatePath = "settings.tls.certificate";
constexpr char const* PrivateKeyPath = "settings.tls.private_key";

std::runtime_error Unusable(std::string const& setting, std::string const& file, std::string const& why) {
    return std::runtime_error(setting + ": " + file + " cannot be used: " + why);
}

/// A wrong clock must not take the device off the network, and many clients ignore the dates: so the certificate is
/// used, with a warning.
void WarnOfDates(ssl::context& context, std::string const& file) {
    static logging::Logger const logger("zarn.host.web.tls");
    X509 const* const certificate = SSL_CTX_get0_certificate(context.native_handle());
    auto const warn = [&](char const* what) {
        logger.Log(logging::Level::Warning, "%0%: %1% %2%: clients that check certificates will refuse it",
                   CertificatePath, file, what);
    };
    // 0 means that the date could not be parsed.
    if (X509_cmp_current_time(X509_get0_notAfter(certificate)) <= 0) warn("has expired");
    if (X509_cmp_current_time(X509_get0_notBefore(certificate)) >= 0) warn("is not valid yet");
}

} // namespace

std::vector<configuration::Schema> MakeTlsSchemas() {
    return {{CertificatePath, "", "PEM file with the certificate chain; empty: no TLS"},
            {PrivateKeyPath, "", "PEM file with the private key of the certificate"}};
}

std::shared_ptr<ssl::context> ReadTls(configuration::node::Root const& root) {
    auto const certificate = configuration::node::Read<std::string>(root, CertificatePath);
    auto const privateKey = configuration::node::Read<std::string>(root, PrivateKeyPath);
    if (certificate.empty() && privateKey.empty()) return nullptr;
    if (privateKey.empty()) throw configuration::Error(PrivateKeyPath, "there is a certificate but no private key");
    if (certificate.empty()) throw configuration::Error(CertificatePath, "there is a private key but no certificate");
    return MakeTlsContext(certificate, privateKey);
}

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
    WarnOfDates(*context, certificate);
    return context;
}

} // namespace zarn::host::web
