#pragma once

#include <boost/json/fwd.hpp>

#include <cstddef>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zarn::json {

/// What a text may hold.
struct Bounds {
    std::size_t levels = 32;                                        ///< lists and objects within each other
    std::size_t fields = std::numeric_limits<std::size_t>::max();   ///< of one object
    std::size_t elements = std::numeric_limits<std::size_t>::max(); ///< of one list
};

/// A list or an object that is open at a position of a text.
struct Level {
    bool isList = false;              ///< a list; otherwise an object
    std::size_t elements = 0;         ///< of a list up to the position, the one that is being read included
    std::optional<std::string> key{}; ///< of an object, the one that was read last
};

/// Why a text is refused, and where.
class ParseError : public std::runtime_error {
public:
    /// The rule that the text breaks.
    enum class Reason { Syntax, DuplicateKey, TooManyFields, TooManyElements, TooManyLevels };

    /// position, path  see GetPosition and GetPath
    ParseError(Reason reason, std::string const& message, std::string position, std::vector<Level> path)
        : runtime_error(message), reason(reason), position(std::move(position)), path(std::move(path)) {}

    /// The rule that the text breaks.
    Reason GetReason() const noexcept { return reason; }

    /// Where reading stopped, such as "line 2, column 11"; for a duplicate key, at its end.
    std::string const& GetPosition() const noexcept { return position; }

    /// The lists and objects that are open there, from the outermost one on.
    std::vector<Level> const& GetPath() const noexcept { return path; }

private:
    Reason reason;
    std::string position;
    std::vector<Level> path;
};

/// Parses a text by the grammar of JSON (RFC 8259), which must be UTF-8. Refuses a key that occurs twice in an object,
/// of which Boost's own parser would keep the last. Throws ParseError. Thread: any.
boost::json::value Parse(std::string_view text, Bounds const& bounds = {});

} // namespace zarn::json
