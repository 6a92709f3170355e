#pragma once

#include <zarn/logging/capture.h>
#include <zarn/logging/level.h>

#include <functional>
#include <memory>

namespace zarn::logging {

/// Where the lines of all loggers go: standard error and the listeners. Thread: any.
class Output {
public:
    /// Gets every line of its level or above, one at a time; must not log.
    struct Listener {
        Level least;
        std::function<void(Line const&)> write;
    };

    /// The one of the process. It lives until what was constructed after the first call has been destroyed.
    static Output& Get();

    Output();
    ~Output();
    Output(Output const&) = delete;
    Output& operator=(Output const&) = delete;

    void SetLevel(Level least);
    void Write(Line const& line);
    void Add(std::shared_ptr<Listener const> listener);

    /// Returns when the listener is not called any more.
    void Remove(std::shared_ptr<Listener const> const& listener);

private:
    void UpdateThreshold();

    struct State;
    std::unique_ptr<State> state;
};

} // namespace zarn::logging
