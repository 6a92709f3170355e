#include <zarn/logging/level.h>

#include <algorithm>
#include <array>

namespace zarn::logging {

namespace {

struct LevelName {
    Level level;
    std::string_view name;
};

/// From the highest level down.
constexpr std::array LevelNames{
    LevelName{Level::Critical, "critical"}, LevelName{Level::Error, "error"}, LevelName{Level::Warning, "warning"},
    LevelName{Level::Info, "info"},         LevelName{Level::Debug, "debug"}, LevelName{Level::Trace, "trace"},
};

} // namespace

std::string_view ToString(Level level) noexcept {
    auto const* row = std::ranges::find_if(LevelNames, [level](LevelName const& each) { return each.level <= level; });
    return row == LevelNames.end() ? LevelNames.back().name : row->name;
}

std::optional<Level> LevelFromString(std::string_view name) noexcept {
    auto const* row = std::ranges::find(LevelNames, name, &LevelName::name);
    if (row == LevelNames.end()) return std::nullopt;
    return row->level;
}

} // namespace zarn::logging
