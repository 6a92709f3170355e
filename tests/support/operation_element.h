#pragma once

#include <interface/operations.h>

#include <string>

namespace zarn::test {

/// The element that calls an operation for the channel "1": with both tokens, of which each operation skips those that
/// it does not know.
inline std::string MakeElement(bindings::Operation const& operation) {
    auto const prefix = std::string(operation.prefix) + ":";
    auto const wrap = [&](std::string const& name, std::string const& content) {
        return "<" + prefix + name + ">" + content + "</" + prefix + name + ">";
    };
    return wrap(std::string(operation.name),
                wrap("ConfigurationToken", "channels.1") + wrap("ProfileToken", "channels.1"));
}

} // namespace zarn::test
