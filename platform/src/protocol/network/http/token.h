#pragma once

#include <string_view>

namespace zarn::protocol::network::http {

/// True when `text` is a token, as field names are. Source: RFC 9110, 5.6.2.
bool IsToken(std::string_view text) noexcept;

/// Compares two names without regard to the case of ASCII letters, as field names are compared.
bool EqualsIgnoringCase(std::string_view left, std::string_view right) noexcept;

/// `text` without spaces and tabs at either end (OWS in RFC 9110, 5.6.3).
std::string_view Trim(std::string_view text) noexcept;

} // namespace zarn::protocol::network::http
