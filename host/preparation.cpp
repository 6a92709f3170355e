#include "host/preparation.h"

#include "host/events/mqtt_configuration.h"
#include "host/web/tls.h"

#include <zarn/configuration/error.h>

#include <stdexcept>
#include <string>

namespace zarn::host {
namespace {

void ReadConfiguration(ConfigurationFile& file, bool check) {
    if (check) {
        file.Load();
    } else {
        file.Open();
    }
}

void ApplyOverrides(configuration::node::Root const& root, CommandLine const& commandLine) {
    for (auto const& [path, text] : commandLine.overrides) {
        try {
            OverrideSetting(root, path, text);
        } catch (configuration::Error const& error) {
            throw std::runtime_error(std::string("--set: ") + error.what());
        }
    }
}

std::shared_ptr<boost::asio::ssl::context> ReadTls(Preparation const& preparation) {
    try {
        auto const files = ReadTlsFiles(*preparation.configuration);
        return files.IsEmpty() ? nullptr : web::MakeTlsContext(files.certificate, files.privateKey);
    } catch (std::runtime_error const& error) {
        throw std::runtime_error(preparation.file->GetPath() + ": " + error.what());
    }
}

void CheckMqtt(Preparation const& preparation) {
    try {
        events::ReadMqttSettings(*preparation.configuration);
    } catch (configuration::Error const& error) {
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
    ReadConfiguration(*preparation.file, commandLine.check);
    ApplyOverrides(*preparation.configuration, commandLine);
    preparation.tls = ReadTls(preparation);
    CheckMqtt(preparation);
    if (!commandLine.check) {
        preparation.file->KeepCopy();
        preparation.credentials = LoadCredentials(preparation.file->GetPath() + ".credentials", commandLine.password);
    }
    return preparation;
}

} // namespace zarn::host
