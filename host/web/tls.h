#pragma once

#include <zarn/configuration/node/root.h>
#include <zarn/configuration/schema.h>

#include <boost/asio/ssl/context.hpp>

#include <memory>
#include <string>
#include <vector>

namespace zarn::host::web {

/// Describes `settings.tls`.
std::vector<configuration::Schema> MakeTlsSchemas();

/// The TLS server context that `settings.tls` asks for, see MakeTlsContext; null: no TLS.
/// Throws configuration::Error when only one of the two files is given.
std::shared_ptr<boost::asio::ssl::context> ReadTls(configuration::node::Root const& root);

/// A TLS server context with a certificate chain and its key, both PEM files: TLS 1.2 or newer.
/// Throws std::runtime_error that names the setting, the file and the reason when a file cannot be read or the key does
/// not belong to the certificate. A certificate that has expired or is not valid yet is used, with a warning in the
/// log. A key that is protected by a password is refused, because there is no one to enter it.
std::shared_ptr<boost::asio::ssl::context> MakeTlsContext(std::string const& certificate,
                                                          std::string const& privateKey);

} // namespace zarn::host::web
