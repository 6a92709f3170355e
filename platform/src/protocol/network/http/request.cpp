#include <zarn/protocol/network/http/request.h>
#include <zarn/protocol/network/http/token.h>
#include <zarn/text/character.h>

#include <boost/beast/core/string.hpp>

#include <algorithm>
#include <iterator>
#include <ostream>

namespace zarn::protocol::network::http {

namespace {

constexpr std::string_view LineEnd = "\r\n";
constexpr std::string_view Separator = ": ";

void AppendTarget(std::string& text, std::string_view target) {
    auto const isPlain = [](char each) { return '!' <= each && each <= '~'; };
    if (target.empty())
        text += '/';
    else if (std::ranges::all_of(target, isPlain))
        text += target;
    else
        text += text::PercentEncode(target, isPlain);
}

bool IsFraming(std::string_view name) {
    return boost::beast::iequals(name, "Content-Length") || boost::beast::iequals(name, "Transfer-Encoding");
}

void AppendField(std::string& text, std::string_view name, std::string_view value) {
    if (!IsToken(name) || IsFraming(name)) return;
    text.append(name).append(Separator);
    std::ranges::replace_copy_if(
        value, std::back_inserter(text), [](char each) { return each == '\r' || each == '\n' || each == '\0'; }, ' ');
    text.append(LineEnd);
}

} // namespace

Request::Request(Method method, std::string_view target, std::string_view body, Fields const& fields) {
    constexpr std::size_t RequestLine = 64;
    auto size = RequestLine + target.size() + body.size();
    for (auto const& [name, value] : fields) size += name.size() + value.size() + Separator.size() + LineEnd.size();
    text.reserve(size);
    text.append(ToString(method)).append(" ");
    AppendTarget(text, target);
    text.append(" HTTP/1.1").append(LineEnd);
    for (auto const& [name, value] : fields) AppendField(text, name, value);
    text.append("Content-Length: ").append(std::to_string(body.size())).append(LineEnd).append(LineEnd);
    header = text.size();
    text.append(body);
}

Request::Request(Method method, std::string const& target, std::string const& body,
                 std::map<std::string, std::string> const& fields)
    : Request(method, target, std::string_view(body), Fields(fields.begin(), fields.end())) {}

std::vector<std::pair<std::string_view, std::string_view>> Request::GetFields() const {
    std::vector<std::pair<std::string_view, std::string_view>> fields;
    std::string_view rest(text.data(), header - LineEnd.size());
    rest.remove_prefix(rest.find(LineEnd) + LineEnd.size());
    while (!rest.empty()) {
        auto const line = rest.substr(0, rest.find(LineEnd));
        auto const colon = line.find(Separator);
        fields.emplace_back(line.substr(0, colon), line.substr(colon + Separator.size()));
        rest.remove_prefix(line.size() + LineEnd.size());
    }
    return fields;
}

std::ostream& operator<<(std::ostream& stream, Request const& request) { return stream << request.GetText(); }

} // namespace zarn::protocol::network::http
