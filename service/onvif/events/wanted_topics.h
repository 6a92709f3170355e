#pragma once

#include "types.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace zarn::service::onvif::events {

/// The topics that a subscription wants, of those that messages can have. A value; reading is safe from any thread.
class WantedTopics {
public:
    /// All topics.
    WantedTopics() = default;

    /// The topics of a filter; an empty filter wants all. Compared exactly; a text that is no family's topic wants
    /// nothing.
    explicit WantedTopics(std::set<std::string, std::less<>> const& filter);

    /// Whether messages of a family's subtopic are wanted.
    /// subtopic  a row of a family's own table
    bool Contain(Subtopic const& subtopic) const;

private:
    bool isAll = true;
    std::vector<Subtopic const*> wanted; ///< sorted
};

} // namespace zarn::service::onvif::events
