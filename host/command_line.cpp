#include "host/command_line.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string_view>

namespace zarn::host {
namespace {

constexpr char const* PasswordVariable = "ZARN_HOST_PASSWORD";

std::string GetVariable(char const* name) {
    char const* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

/// The texts of the options before they are looked at.
struct Texts {
    std::string configuration;
    std::vector<std::string> overrides;
    std::string password;
    std::string logLevel = "info";
};

std::variant<CommandLine, Information, Misuse> Interpret(Texts const& texts, CLI::App const& app, bool check) {
    CommandLine commandLine;
    commandLine.check = check;
    if (app.count("--config") > 0) {
        if (texts.configuration.empty()) return Misuse{"--config: the path is empty"};
        commandLine.configuration = texts.configuration;
    }
    for (auto const& text : texts.overrides) {
        auto const sign = text.find('=');
        if (sign == 0 || sign == std::string::npos) return Misuse{"--set: " + text + " is not PATH=VALUE"};
        commandLine.overrides.emplace_back(text.substr(0, sign), text.substr(sign + 1));
    }
    if (app.count("--password") > 0) {
        if (texts.password.empty()) return Misuse{"--password: the password is empty"};
        commandLine.password = texts.password;
    } else if (auto password = GetVariable(PasswordVariable); !password.empty()) {
        commandLine.password = std::move(password);
    }
    auto const level = logging::LevelFromString(texts.logLevel);
    if (!level) {
        return Misuse{"--log-level: " + texts.logLevel + " is not trace, debug, info, warning, error or critical"};
    }
    commandLine.logLevel = *level;
    return commandLine;
}

} // namespace

std::variant<CommandLine, Information, Misuse> ParseCommandLine(int count, char const* const* arguments) {
    CLI::App app{"Makes video channels of this machine an ONVIF device.", "zarn-host"};
    Texts texts;
    bool check = false;
    app.add_option("--config", texts.configuration,
                   "The configuration, JSON; written when it does not exist.\n"
                   "Default: $XDG_CONFIG_HOME/zarn-host/config.json, else ~/.config/zarn-host/config.json")
        ->type_name("FILE");
    app.add_option("--set", texts.overrides, "Overrides a setting for this run; may be repeated")
        ->type_name("PATH=VALUE")
        ->allow_extra_args(false);
    app.add_option("--password", texts.password,
                   "Sets the password of user admin; also taken from the environment as ZARN_HOST_PASSWORD.\n"
                   "Without either, one is made at the first start and printed once")
        ->type_name("PASSWORD");
    app.add_option("--log-level", texts.logLevel, "trace, debug, info, warning, error or critical; default info")
        ->type_name("LEVEL");
    app.add_flag("--check", check, "Checks the configuration and exits");
    app.set_version_flag("--version", "zarn-host " ZARN_VERSION, "Prints the version and exits");
    app.set_help_flag("--help", "Prints this and exits");
    try {
        app.parse(count, arguments);
        return Interpret(texts, app, check);
    } catch (CLI::CallForHelp const&) {
        return Information{app.help()};
    } catch (CLI::CallForVersion const& version) {
        return Information{std::string(version.what()) + '\n'};
    } catch (CLI::ParseError const& error) {
        std::string text = error.what();
        std::replace(text.begin(), text.end(), '\n', ' ');
        return Misuse{text};
    }
}

void HidePassword(int count, char** arguments) {
    constexpr std::string_view Option = "--password";
    for (int i = 1; i < count; ++i) {
        std::string_view const argument = arguments[i];
        char* secret = nullptr;
        if (argument == Option && i + 1 < count) secret = arguments[i + 1];
        if (argument.starts_with("--password=")) secret = arguments[i] + Option.size() + 1;
        if (secret != nullptr) std::memset(secret, '*', std::strlen(secret));
    }
}

std::string DefaultConfigurationPath() {
    constexpr char const* File = "/zarn-host/config.json";
    if (auto const folder = GetVariable("XDG_CONFIG_HOME"); folder.starts_with('/')) return folder + File;
    if (auto const home = GetVariable("HOME"); home.starts_with('/')) return home + "/.config" + File;
    throw std::runtime_error("no place for the configuration: give --config, or set XDG_CONFIG_HOME or HOME");
}

} // namespace zarn::host
