#pragma once

#include <stdexcept>

namespace zarn::host::events {

/// A text does not hold events. The message names the event (counted from 1), the field (elements of lists counted from
/// 0) and the rule, such as `event 2: objects[1].id: "x" is not a number from 0 to 4294967295`. It is one line of UTF-8
/// without control characters, a few hundred bytes at most, whatever the text was.
class ReadError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace zarn::host::events
