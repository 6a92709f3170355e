#include "exchange_script.h"

#include <algorithm>

namespace zarn::fuzz {
namespace {

constexpr std::string_view Separator = "\n%%%\n";

/// Removes and returns the text before `end`; removes `end` as well.
std::string_view TakeUntil(std::string_view& text, std::string_view end) {
    auto const found = text.find(end);
    auto const taken = text.substr(0, found);
    text.remove_prefix(found == std::string_view::npos ? text.size() : found + end.size());
    return taken;
}

ScriptedRequest ReadRequest(std::string_view text) {
    ScriptedRequest request;
    if (!text.empty()) {
        auto const variant = static_cast<unsigned char>(text.front());
        request.isOpen = (variant & 1U) != 0;
        request.isSigned = (variant & 2U) != 0;
        request.hasEvent = (variant & 4U) != 0;
        text.remove_prefix(1);
    }
    request.target = TakeUntil(text, "\n");
    for (auto line = TakeUntil(text, "\n"); !line.empty(); line = TakeUntil(text, "\n")) {
        auto const name = TakeUntil(line, ":");
        line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
        request.fields.emplace(name, line);
    }
    request.body = text;
    return request;
}

} // namespace

std::vector<ScriptedRequest> ReadScript(std::string_view text, std::size_t most) {
    std::vector<ScriptedRequest> requests;
    while (!text.empty() && requests.size() < most) requests.push_back(ReadRequest(TakeUntil(text, Separator)));
    return requests;
}

} // namespace zarn::fuzz
