#include <zarn/meta/data/event.h>

#include <utility>

namespace zarn::meta::data {

Event::Event(std::string ruleType, std::string ruleName, std::chrono::system_clock::time_point begin)
    : type(std::move(ruleType)), name(std::move(ruleName)), start(begin) {}

} // namespace zarn::meta::data
