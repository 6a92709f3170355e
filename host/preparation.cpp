#include "host/preparation.h"

#include "host/events/mqtt_settings.h"
#include "host/settings.h"
#include "host/web/tls.h"

#include <zarn/configuration/error.h>

#include <stdexcept>
#include <string>

namespace zarn::host {
namespace {

void ApplyOverrides(configuration::node::Root const& root, CommandLine const& commandLine) {
    for (auto const& [path, text] : commandLine.overrides) {
        try {
            OverrideSetting(root, path, text);
        } catch (configuration::Error const& error) {
            throw std::runtime_error(std::string("--set: ") + error.what());
        }
    }
}

/// Reads the settings that are wrong only together, or together with other files.
void ReadTogether(Preparation& preparation) {
    try {
        preparation.tls = web::ReadTls(*preparation.configuration);
        events::ReadMqttSettings(*preparation.configuration);
    } catch (std::runtime_error const& error) {
        throw std::runtime_error(preparation.file->GetPath() + ": " + error.what());
    }
}

} // namespace

Preparation Prepare(CommandLine const& commandLine) {
    Preparation preparation;
    preparation.configuration = std::make_shared<configuration::node::Root>();
    DescribeSettings(*preparation.configuration);
    preparation.file = std::make_unique<ConfigurationFile>(
        commandLine.configuration ? *commandLine.configuration : DefaultConfigurationPath(), preparation.configuration);
    if (commandLine.check) {
        preparation.file->Load();
    } else {
        preparation.file->Open();
    }
    ApplyOverrides(*preparation.configuration, commandLine);
    ReadTogether(preparation);
    if (!commandLine.check) {
        preparation.file->KeepCopy();
        preparation.credentials = LoadCredentials(preparation.file->GetPath() + ".credentials", commandLine.password);
    }
    return preparation;
}

} // namespace zarn::host
