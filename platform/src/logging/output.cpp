#include "logging/output.h"

#include <zarn/logging/logger.h>

#include <spdlog/logger.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <algorithm>
#include <atomic>
#include <bit>
#include <mutex>
#include <utility>
#include <vector>

namespace zarn::logging {

namespace {

// Apart from Output, so that a disabled line costs one read, and constant-initialised, so that it is there before and
// after every static object that logs.
constinit std::atomic<Level> Least{Level::Info};     ///< of standard error
constinit std::atomic<Level> Threshold{Level::Info}; ///< of standard error and all listeners

constexpr int LevelCount = spdlog::level::off; // one past the last level

/// The levels are powers of two, spdlog's are counted.
spdlog::level::level_enum ToSpdlog(Level level) noexcept {
    auto const index = static_cast<int>(std::bit_width(static_cast<unsigned>(level))) - 1;
    return static_cast<spdlog::level::level_enum>(std::clamp(index, 0, LevelCount - 1));
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

std::string_view ToString(Level level) noexcept {
    auto const name = spdlog::level::to_string_view(ToSpdlog(level));
    return {name.data(), name.size()};
}

std::optional<Level> LevelFromString(std::string_view name) noexcept {
    for (int i = 0; i < LevelCount; ++i) {
        auto const level = static_cast<Level>(1U << static_cast<unsigned>(i));
        if (ToString(level) == name) return level;
    }
    return std::nullopt;
}

Logger::Logger(std::string name) : name(std::move(name)) {
    // A static logger may be used while the process ends: the output has to be constructed before it.
    Output::Get();
}

void Logger::Write(Level level, std::string const& text) const {
    Output::Get().Write(Line{level, name, ToLine(text, MaximumLineLength)});
}

} // namespace zarn::logging
