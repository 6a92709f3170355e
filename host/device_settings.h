#pragma once

#include <zarn/configuration/node/root.h>
#include <zarn/configuration/schema.h>
#include <zarn/utilities/name/config.h>

#include <vector>

namespace zarn::host {

/// Describes `identity` and `settings.onvif`: what clients are told about the device, and whether they can discover it.
std::vector<configuration::Schema> MakeDeviceSchemas();

/// The product identity (`identity`).
utilities::name::Config ReadIdentity(configuration::node::Root const& root);

/// Whether Probes from networks that the machine is not connected to are answered
/// (`settings.onvif.discovery_anywhere`).
bool ReadDiscoveryAnywhere(configuration::node::Root const& root);

} // namespace zarn::host
