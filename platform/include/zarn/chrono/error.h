#pragma once

#include <stdexcept>

namespace zarn::chrono {

/// A text is not the time or duration that it should be, or what it says cannot be represented.
/// The text of the error quotes what was given, cut short, and names what is wrong with it, such as
/// `"PT5X" is not an ISO 8601 duration: "X" is no unit of time (H, M, S)`.
class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace zarn::chrono
