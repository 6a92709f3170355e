#pragma once

#include "host/command_line.h"
#include "host/configuration_file.h"
#include "host/credentials.h"

#include <zarn/configuration/node/root.h>

#include <boost/asio/ssl/context.hpp>

#include <memory>

namespace zarn::host {

/// What the host reads before it opens its first port.
struct Preparation {
    std::shared_ptr<configuration::node::Root> configuration;
    std::unique_ptr<ConfigurationFile> file;
    Credentials credentials;

    /// Null: no TLS.
    std::shared_ptr<boost::asio::ssl::context> tls;
};

/// Reads and checks configuration, overrides, certificate and credentials; writes what is missing. With
/// CommandLine::check nothing is written, the configuration must exist, and credentials stay empty.
/// Throws std::exception with one line that names file or option, the path in it, and the reason.
Preparation Prepare(CommandLine const& commandLine);

} // namespace zarn::host
