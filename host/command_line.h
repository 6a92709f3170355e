#pragma once

#include <zarn/logging/level.h>

#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace zarn::host {

/// What the command line asks for.
struct CommandLine {
    /// `--config`: path of the configuration file; none: DefaultConfigurationPath().
    std::optional<std::string> configuration;

    /// `--set PATH=VALUE`, in order: path and value.
    std::vector<std::pair<std::string, std::string>> overrides;

    /// `--password`, else the environment variable ZARN_HOST_PASSWORD when it is not empty.
    std::optional<std::string> password;

    /// `--log-level`
    logging::Level logLevel = logging::Level::Info;

    /// `--check`
    bool check = false;
};

/// The command line asks only for this text (`--help`, `--version`).
struct Information {
    std::string text;
};

/// What is wrong with the command line: one line, without a line end. Repeats no value, because any could be a
/// password, even that of a misspelt option.
struct Misuse {
    std::string text;
};

/// Reads the arguments, program name included.
std::variant<CommandLine, Information, Misuse> ParseCommandLine(int count, char const* const* arguments);

/// Overwrites the passwords among the arguments, also those of `--set`, so that other users of the machine do not see
/// them in the list of processes.
void HidePassword(int count, char** arguments);

/// `$XDG_CONFIG_HOME/zarn-host/config.json`, else `$HOME/.config/zarn-host/config.json`.
/// Throws std::runtime_error when neither variable holds an absolute path.
std::string DefaultConfigurationPath();

} // namespace zarn::host
