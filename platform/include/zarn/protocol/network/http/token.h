#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace zarn::protocol::network::http {

/// True when `text` is a token, as field names are. Source: RFC 9110, 5.6.2.
inline bool IsToken(std::string_view text) noexcept {
    static constexpr auto IsAllowed = [] {
        std::array<bool, 256> allowed{};
        for (unsigned char const each : std::string_view("!#$%&'*+-.^_`|~0123456789"
                                                         "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"))
            allowed[each] = true;
        return allowed;
    }();
    return !text.empty() &&
           std::ranges::all_of(text, [](char each) { return IsAllowed[static_cast<unsigned char>(each)]; });
}

} // namespace zarn::protocol::network::http
