#include <zarn/network/authority.h>

#include <charconv>
#include <system_error>

namespace zarn::network {

std::optional<Authority> ParseAuthority(std::string_view text) {
    Authority authority;
    authority.bracketed = text.starts_with('[');
    auto const end = text.find(authority.bracketed ? ']' : ':');
    if (authority.bracketed && end == text.npos) return {};
    authority.host = authority.bracketed ? text.substr(1, end - 1) : text.substr(0, end);
    if (authority.host.empty()) return {};

    auto const rest = text.substr(authority.host.size() + (authority.bracketed ? 2 : 0));
    if (rest.empty()) return authority;
    std::uint16_t port = 0;
    char const* const last = rest.data() + rest.size();
    auto const [parsed, error] = std::from_chars(rest.data() + 1, last, port);
    if (rest.front() != ':' || error != std::errc() || parsed != last || port == 0) return {};
    authority.port = port;
    return authority;
}

} // namespace zarn::network
