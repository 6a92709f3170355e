#include <zarn/logging/level.h>

#include <algorithm>
#include <array>
#include <ranges>

namespace zarn::logging {

namespace {

struct Row {
    Level level;
    std::string_view name;
};

constexpr std::array Rows{
    Row{Level::Trace, "trace"},     Row{Level::Debug, "debug"}, Row{Level::Info, "info"},
    Row{Level::Warning, "warning"}, Row{Level::Error, "error"}, Row{Level::Critical, "critical"},
};

} // namespace

std::string_view ToString(Level level) noexcept {
    auto const descending = Rows | std::views::reverse;
    auto const row = std::ranges::find_if(descending, [level](Row const& each) { return each.level <= level; });
    return row == descending.end() ? Rows.front().name : row->name;
}

std::optional<Level> LevelFromString(std::string_view name) noexcept {
    auto const* row = std::ranges::find(Rows, name, &Row::name);
    if (row == Rows.end()) return std::nullopt;
    return row->level;
}

} // namespace zarn::logging
