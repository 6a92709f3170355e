#pragma once

#include <boost/asio/ssl/context.hpp>

#include <memory>
#include <string>

namespace zarn::host::web {

/// A TLS server context with a certificate chain and its key, both PEM files: TLS 1.2 or newer.
/// Throws std::runtime_error that names the setting, the file and the reason when one cannot be read or the key does
/// not belong to the certificate. One whose time is over or has not come is used, and the log says so. A key that is
/// protected by a password is refused, since nobody is there to type it.
std::shared_ptr<boost::asio::ssl::context> MakeTlsContext(std::string const& certificate,
                                                          std::string const& privateKey);

} // namespace zarn::host::web
