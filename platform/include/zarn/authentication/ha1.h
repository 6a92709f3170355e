#pragma once

#include <string>
#include <string_view>

namespace zarn::authentication {

/// MD5 of "user:realm:password" as 32 lower-case hexadecimal characters: all that has to be stored of a password.
/// Throws std::runtime_error when OpenSSL has no MD5. Thread: any. Source: RFC 7616, 3.4.2.
std::string MakeHa1(std::string_view user, std::string_view realm, std::string_view password);

} // namespace zarn::authentication
