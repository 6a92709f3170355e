#include "wanted_topics.h"

#include "topics.h"

#include <algorithm>
#include <functional>

namespace zarn::service::onvif::events {

WantedTopics::WantedTopics(std::set<std::string, std::less<>> const& filter) : isAll(filter.empty()) {
    if (isAll) return;
    for (auto const& type : Types) {
        for (auto const& subtopic : type.selection->subtopics) {
            if (filter.contains(GetTopic(type.name, subtopic))) wanted.push_back(&subtopic);
        }
    }
    std::ranges::sort(wanted, std::less()); // the tables are separate arrays
}

bool WantedTopics::Contain(Subtopic const& subtopic) const {
    return isAll || std::ranges::binary_search(wanted, &subtopic, std::less());
}

} // namespace zarn::service::onvif::events
