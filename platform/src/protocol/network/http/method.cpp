#include <zarn/protocol/network/http/method.h>

#include <algorithm>
#include <array>

namespace zarn::protocol::network::http {

namespace {

struct Row {
    Method method;
    std::string_view name;
};

constexpr std::array Rows{
    Row{Method::Get, "GET"},         Row{Method::Head, "HEAD"},     Row{Method::Post, "POST"},
    Row{Method::Put, "PUT"},         Row{Method::Delete, "DELETE"}, Row{Method::Connect, "CONNECT"},
    Row{Method::Options, "OPTIONS"}, Row{Method::Trace, "TRACE"},   Row{Method::Patch, "PATCH"},
};

} // namespace

std::string_view ToString(Method method) noexcept {
    auto const* row = std::ranges::find(Rows, method, &Row::method);
    return row == Rows.end() ? std::string_view() : row->name;
}

std::optional<Method> FromString(std::string_view name) noexcept {
    auto const* row = std::ranges::find(Rows, name, &Row::name);
    if (row == Rows.end()) return std::nullopt;
    return row->method;
}

std::string MakeAllow(std::vector<Method> const& methods) {
    std::string allow;
    for (auto const method : methods) allow.append(ToString(method)).append(", ");
    return allow.append("OPTIONS");
}

} // namespace zarn::protocol::network::http
