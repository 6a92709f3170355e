#pragma once

#include <zarn/configuration/unknown.h>

#include <functional>
#include <vector>

namespace zarn::configuration {

class Notification;

/// A change that was checked as a whole before its first step is made.
class Change {
public:
    explicit Change(Unknown unknownKeys);

    /// What to do with keys that no schema describes.
    Unknown GetUnknown() const noexcept;

    /// Adds a step. It runs with the lock of the tree and must not fail.
    void Add(std::function<void(Notification&)> step);

    /// Makes the steps in their order.
    void Apply(Notification& notification) const;

private:
    Unknown const unknown;
    std::vector<std::function<void(Notification&)>> steps;
};

} // namespace zarn::configuration
