#pragma once

#include <stdexcept>

namespace zarn::chrono {

/// A text is not the time or duration that it should be, or what it says cannot be represented.
/// The text of the error quotes what was given, on one line and cut short, and names what is wrong with it, such as
/// `ISO 8601 duration "PT5X": one of the units H, M, S, in this order, expected at "X"`.
class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace zarn::chrono
