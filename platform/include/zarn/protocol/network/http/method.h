#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::protocol::network::http {

/// Request methods. Source: RFC 9110, 9.3; PATCH: RFC 5789.
enum class Method { Get, Head, Post, Put, Delete, Connect, Options, Trace, Patch };

/// The method as a request line has it, for example "POST".
std::string_view ToString(Method method) noexcept;

/// The method with that name (case counts: RFC 9110, 9.1); empty for an unknown name.
std::optional<Method> FromString(std::string_view name) noexcept;

/// The value of the field Allow for a resource with these methods, and OPTIONS, which every resource has.
/// Source: RFC 9110, 10.2.1.
std::string MakeAllow(std::vector<Method> const& methods);

} // namespace zarn::protocol::network::http
