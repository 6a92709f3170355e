#pragma once

#include <optional>
#include <string_view>

namespace zarn::protocol::network::http {

/// Request methods. Source: RFC 9110, 9.3; PATCH: RFC 5789.
enum class Method { Get, Head, Post, Put, Delete, Connect, Options, Trace, Patch };

/// The method as a request line has it, for example "POST".
std::string_view ToString(Method method) noexcept;

/// The method with that name (case counts: RFC 9110, 9.1); empty for an unknown name.
std::optional<Method> FromString(std::string_view name) noexcept;

} // namespace zarn::protocol::network::http
