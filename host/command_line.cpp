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

/// The options as they were given.
struct Texts {
    std::string configuration;
    std::vector<std::string> overrides;
    std::string password;
    std::string logLevel = "info";
};

/// The beginning of a text that can be the path of a setting. The rest may be a secret in the wrong place.
std::string_view GetPathPart(std::string_view text) {
    constexpr std::string_view PathCharacters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_.";
    return text.substr(0, text.find_first_not_of(PathCharacters));
}

/// What is wrong with unknown arguments. Names options only, because their values and the arguments after them may be
/// passwords.
Misuse RefuseExtras(std::vector<std::string> const& extras) {
    for (auto const& text : extras) {
        if (text.size() < 2 || !text.starts_with('-')) continue;
        // After one dash: one letter, then the value.
        auto const name = text.starts_with("--") ? text.substr(0, text.find('=')) : text.substr(0, 2);
        return Misuse{name + " is not an option; --help lists them"};
    }
    return Misuse{"there are arguments that belong to no option; --help lists the options"};
}

std::variant<CommandLine, Information, Misuse> Interpret(Texts const& texts, CLI::App const& app, bool check) {
    CommandLine commandLine;
    commandLine.check = check;
    if (app.count("--config") > 0) {
        if (texts.configuration.empty()) return Misuse{"--config: the path is empty"};
        commandLine.configuration = texts.configuration;
    }
    for (auto const& text : texts.overrides) {
        auto const sign = text.find('=');
        if (sign == 0 || sign == std::string::npos) {
            return Misuse{"--set: \"" + std::string(GetPathPart(text)) + "\" is not followed by =VALUE"};
        }
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

/// What follows the first "="; null without one.
char* FindValue(char* text) {
    char* const sign = std::strchr(text, '=');
    return sign == nullptr ? nullptr : sign + 1;
}

/// The value in PATH=VALUE when it is that of a password; else null.
char* FindPassword(char* text) {
    char* const value = FindValue(text);
    if (value == nullptr) return nullptr;
    return std::string_view(text, value - 1).ends_with("password") ? value : nullptr;
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
    } catch (CLI::ExtrasError const&) {
        return RefuseExtras(app.remaining());
    } catch (CLI::ConversionError const&) {
        return Misuse{"--check, --help and --version take no value"};
    } catch (CLI::ParseError const& error) {
        std::string text = error.what();
        std::replace(text.begin(), text.end(), '\n', ' ');
        return Misuse{text};
    }
}

void HidePassword(int count, char** arguments) {
    for (int i = 1; i < count; ++i) {
        std::string_view const argument = arguments[i];
        char* const next = i + 1 < count ? arguments[i + 1] : nullptr;
        char* secret = nullptr;
        if (argument == "--password") secret = next;
        if (argument.starts_with("--password=")) secret = FindValue(arguments[i]);
        if (argument == "--set" && next != nullptr) secret = FindPassword(next);
        if (argument.starts_with("--set=")) secret = FindPassword(FindValue(arguments[i]));
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
