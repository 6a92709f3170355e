#include "configuration/change.h"

#include <utility>

namespace zarn::configuration {

Change::Change(Unknown unknownKeys) : unknown(unknownKeys) {}

Unknown Change::GetUnknown() const noexcept { return unknown; }

void Change::Add(std::function<void(Notification&)> step) { steps.push_back(std::move(step)); }

void Change::Apply(Notification& notification) const {
    for (auto const& step : steps) step(notification);
}

} // namespace zarn::configuration
