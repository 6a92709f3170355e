#include "logging/output.h"

#include <zarn/logging/logger.h>

#include <utility>

namespace zarn::logging {

Logger::Logger(std::string name) : name(std::move(name)) {
    // A static logger may be used while the process ends: the output has to be constructed before it.
    Output::Get();
}

void Logger::Write(Level level, std::string const& text) const {
    Output::Get().Write(Line{level, name, ToLine(text, MaximumLineLength)});
}

} // namespace zarn::logging
