#include <zarn/logging/level.h>

#include <algorithm>
#include <array>

namespace zarn::logging {

namespace {

struct Row {
    Level level;
    std::string_view name;
};

/// From the highest level down.
constexpr std::array Rows{
    Row{Level::Critical, "critical"}, Row{Level::Error, "error"}, Row{Level::Warning, "warning"},
    Row{Level::Info, "info"},         Row{Level::Debug, "debug"}, Row{Level::Trace, "trace"},
};

} // namespace

std::string_view ToString(Level level) noexcept {
    auto const* row = std::ranges::find_if(Rows, [level](Row const& each) { return each.level <= level; });
    return row == Rows.end() ? Rows.back().name : row->name;
}

std::optional<Level> LevelFromString(std::string_view name) noexcept {
    auto const* row = std::ranges::find(Rows, name, &Row::name);
    if (row == Rows.end()) return std::nullopt;
    return row->level;
}

} // namespace zarn::logging
