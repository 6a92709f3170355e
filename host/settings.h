#pragma once

#include <zarn/configuration/node/root.h>

#include <string>

namespace zarn::host {

/// Describes everything that the configuration can hold, in the order of the file. To be called once per tree. Schema,
/// bounds, defaults and reader of a setting stand with the part that obeys it.
void DescribeSettings(configuration::node::Root& root);

/// Overrides a value for this run, typed by the node.
/// Throws configuration::Error when there is no such setting or it does not accept the text.
void OverrideSetting(configuration::node::Root const& root, std::string const& path, std::string const& text);

} // namespace zarn::host
