#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace zarn::network {

/// The part of an address that says where a server is.
struct Authority {
    std::string_view host;             ///< not empty; an IPv6 address without its brackets
    bool bracketed = false;            ///< whether the host had brackets
    std::optional<std::uint16_t> port; ///< not 0
};

/// Reads HOST[:PORT]; nothing when the host is empty, brackets do not match or the port is not 1 to 65535. The
/// characters of the host are not checked: GStreamer takes zone identifiers ("[fe80::1%eth0]") and names beyond ASCII,
/// both of which Boost.URL refuses. The result refers to the text. Thread: any.
std::optional<Authority> ParseAuthority(std::string_view text);

} // namespace zarn::network
