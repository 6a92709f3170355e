#pragma once

#include <string_view>

namespace zarn::protocol::network::http {

/// True when `text` is a token, as field names are. Source: RFC 9110, 5.6.2.
inline bool IsToken(std::string_view text) noexcept {
    constexpr std::string_view Characters = "!#$%&'*+-.^_`|~0123456789"
                                            "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    return !text.empty() && text.find_first_not_of(Characters) == std::string_view::npos;
}

} // namespace zarn::protocol::network::http
