#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace zarn::authentication {

/// MD5 of the parts joined with ":", as 32 lower-case hexadecimal characters: how every hash of the digest scheme is
/// made. Throws std::runtime_error when OpenSSL has no MD5. Source: RFC 2617, 3.2.1.
std::string Md5(std::initializer_list<std::string_view> parts);

} // namespace zarn::authentication
