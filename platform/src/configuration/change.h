#pragma once

#include <zarn/configuration/node/map.h>

#include <functional>
#include <utility>
#include <vector>

namespace zarn::configuration {

class Notification;

/// A change that was checked as a whole before its first step is made.
class Change {
public:
    explicit Change(Unknown unknownKeys) : unknown(unknownKeys) {}

    /// What to do with keys that no schema describes.
    Unknown GetUnknown() const noexcept { return unknown; }

    /// Adds a step. It runs with the lock of the tree and must not fail.
    void Add(std::function<void(Notification&)> step) { steps.push_back(std::move(step)); }

    /// Makes the steps in their order.
    void Apply(Notification& notification) const {
        for (auto const& step : steps) step(notification);
    }

private:
    Unknown const unknown;
    std::vector<std::function<void(Notification&)>> steps;
};

} // namespace zarn::configuration
