#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zarn::protocol::network::http {

/// Header fields as they stand in a message, repeated ones one by one; views of the message.
using FieldList = std::vector<std::pair<std::string_view, std::string_view>>;

/// What a message may not exceed.
struct MessageBounds {
    std::size_t line;   ///< bytes of one line without its end
    std::size_t header; ///< bytes of the lines between two calls of StartHeader
    std::size_t fields; ///< number of fields that ReadFields takes
};

/// Takes parts from the front of a message, within bounds. What is wrong is thrown as ParseError with the line number.
class MessageReader {
public:
    MessageReader(std::string_view text, MessageBounds const& bounds) noexcept;

    /// The bound on the header counts from here.
    void StartHeader() noexcept;

    /// A line without its CR LF.
    std::string_view ReadLine();

    /// Field lines up to and with the blank line that ends them. Source: RFC 9112, 5.
    FieldList ReadFields();

    /// Exactly `size` bytes.
    std::string_view ReadBytes(std::size_t size);

    /// Everything up to the end.
    std::string_view ReadRest() noexcept;

    /// "line N: " of the line read last, for errors about it.
    std::string Where() const;

private:
    std::string_view text; ///< not read yet
    MessageBounds const bounds;
    std::size_t header = 0; ///< bytes of the header so far
    std::size_t line = 0;
};

} // namespace zarn::protocol::network::http
