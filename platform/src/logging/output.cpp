#include "logging/output.h"

#include <zarn/logging/logger.h>

#include <spdlog/logger.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <mutex>
#include <vector>

namespace zarn::logging {

namespace {

// Apart from Output, so that a disabled line costs one read, and constant-initialised, so that it is there before and
// after every static object that logs.
constinit std::atomic<Level> Least{Level::Info};     ///< of standard error
constinit std::atomic<Level> Threshold{Level::Info}; ///< of standard error and all listeners

struct SpdlogLevel {
    Level level;
    spdlog::level::level_enum spdlog;
};

constexpr std::array SpdlogLevels{
    SpdlogLevel{Level::Critical, spdlog::level::critical}, SpdlogLevel{Level::Error, spdlog::level::err},
    SpdlogLevel{Level::Warning, spdlog::level::warn},      SpdlogLevel{Level::Info, spdlog::level::info},
    SpdlogLevel{Level::Debug, spdlog::level::debug},
};

spdlog::level::level_enum ToSpdlog(Level level) {
    auto const* row =
        std::ranges::find_if(SpdlogLevels, [level](SpdlogLevel const& each) { return each.level <= level; });
    return row == SpdlogLevels.end() ? spdlog::level::trace : row->spdlog;
}

} // namespace

struct Output::State {
    spdlog::sinks::stderr_sink_mt standardError;
    std::mutex mutex; ///< guards listeners
    std::vector<std::shared_ptr<Listener const>> listeners;
};

Output& Output::Get() {
    static Output output;
    return output;
}

Output::Output() : state(std::make_unique<State>()) {
    state->standardError.set_formatter(
        std::make_unique<spdlog::pattern_formatter>("%Y-%m-%dT%H:%M:%S.%eZ %l %n: %v", spdlog::pattern_time_type::utc));
}

Output::~Output() = default;

void Output::SetLevel(Level least) {
    std::lock_guard const lock(state->mutex);
    Least = least;
    UpdateThreshold();
}

void Output::Write(Line const& line) {
    if (line.level >= Least.load(std::memory_order_relaxed)) {
        state->standardError.log(spdlog::details::log_msg(line.name, ToSpdlog(line.level), line.text));
    }
    std::lock_guard const lock(state->mutex);
    for (auto const& listener : state->listeners) {
        if (line.level >= listener->least) listener->write(line);
    }
}

void Output::Add(std::shared_ptr<Listener const> listener) {
    std::lock_guard const lock(state->mutex);
    state->listeners.push_back(std::move(listener));
    UpdateThreshold();
}

void Output::Remove(std::shared_ptr<Listener const> const& listener) {
    std::lock_guard const lock(state->mutex);
    std::erase(state->listeners, listener);
    UpdateThreshold();
}

void Output::UpdateThreshold() {
    auto threshold = Least.load();
    for (auto const& listener : state->listeners) threshold = std::min(threshold, listener->least);
    Threshold = threshold;
}

void SetLevel(Level least) { Output::Get().SetLevel(least); }

Level GetLevel() noexcept { return Least; }

bool IsEnabled(Level level) noexcept { return level >= Threshold.load(std::memory_order_relaxed); }

} // namespace zarn::logging
