#include "logging/output.h"

#include <zarn/logging/capture.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>

namespace zarn::logging {

struct Capture::State {
    std::shared_ptr<Output::Listener const> listener;
    std::mutex mutex; ///< guards lines
    std::condition_variable added;
    std::vector<Line> lines;

    bool Contains(std::string_view part) const {
        return std::ranges::any_of(lines,
                                   [part](Line const& line) { return line.text.find(part) != std::string::npos; });
    }
};

Capture::Capture(Level least) : state(std::make_unique<State>()) {
    state->listener =
        std::make_shared<Output::Listener const>(Output::Listener{least, [&captured = *state](Line const& line) {
                                                                      std::lock_guard const lock(captured.mutex);
                                                                      captured.lines.push_back(line);
                                                                      captured.added.notify_all();
                                                                  }});
    Output::Get().Add(state->listener);
}

Capture::~Capture() { Output::Get().Remove(state->listener); }

std::vector<Line> Capture::GetLines() const {
    std::lock_guard const lock(state->mutex);
    return state->lines;
}

bool Capture::Contains(std::string_view part) const {
    std::lock_guard const lock(state->mutex);
    return state->Contains(part);
}

bool Capture::WaitFor(std::string_view part, std::chrono::milliseconds timeout) const {
    std::unique_lock lock(state->mutex);
    return state->added.wait_for(lock, timeout, [&] { return state->Contains(part); });
}

} // namespace zarn::logging
