#pragma once

#include <zarn/logging/format.h>
#include <zarn/logging/level.h>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace zarn::logging {

/// The longest text of a log line in bytes; what is longer is cut and says so.
inline constexpr std::size_t MaximumLineLength = std::size_t{16} * 1024;

/// Sets the least level that is written to standard error. Default: Level::Info. Thread: any.
/// Throws std::exception when it is the first to need the output and that cannot be made.
void SetLevel(Level least);

/// The least level that is written to standard error. Thread: any.
Level GetLevel() noexcept;

/// True when a line of this level would be written or captured. Costs one atomic read. Thread: any.
bool IsEnabled(Level level) noexcept;

/// A named source of log lines. A line goes to standard error, one write per line: UTC time, level, name and text.
/// The text is one line whatever its arguments hold (see ToLine) and at most MaximumLineLength bytes long.
/// Logging never throws because of the output. Thread: any, on one object too.
class Logger {
public:
    /// name  shown in every line, for example "zarn.service.onvif"
    explicit Logger(std::string name);

    /// Writes a line when its level is enabled; the arguments are turned into text only then.
    /// level   a Level or its number
    /// format  text with numbered placeholders, see Format
    /// args    see ToText
    template <class... Args>
    void Log(Level level, std::string_view format, Args const&... args) const {
        if (!IsEnabled(level)) return;
        std::array<std::string, sizeof...(Args)> const texts{ToText(args)...};
        Write(level, Format(format, texts));
    }

    /// As above.
    /// level  the number of a Level
    template <class... Args>
    void Log(int level, std::string_view format, Args const&... args) const {
        Log(static_cast<Level>(level), format, args...);
    }

    /// Writes a text as a line, whether or not its level is enabled.
    void Write(Level level, std::string const& text) const;

    /// The name given at construction.
    std::string const& GetName() const noexcept { return name; }

private:
    std::string name;
};

} // namespace zarn::logging
