#pragma once

#include "host/web/limits.h"

#include <zarn/configuration/node/root.h>
#include <zarn/configuration/schema.h>

#include <vector>

namespace zarn::host::web {

/// Describes `settings.web_port` and those of `settings.limits` that only the web server obeys.
std::vector<configuration::Schema> MakeWebSchemas();

/// The bounds of the web server (`settings.limits`).
Limits ReadLimits(configuration::node::Root const& root);

} // namespace zarn::host::web
