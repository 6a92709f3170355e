#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::fuzz {

/// One request of an input.
struct ScriptedRequest {
    bool isOpen = false;   ///< the device asks nobody for credentials
    bool isSigned = false; ///< with the right digest in place of any Authorization field
    bool hasEvent = false; ///< the host publishes an event before
    std::string target;
    std::map<std::string, std::string> fields;
    std::string body;
};

/// The requests that an input stands for, in order, `most` at most, separated by lines "%%%". A request begins with one
/// letter whose lowest bits say what the members above say (A: open, B: signed, D: with an event; @: none of it),
/// behind which stands the target; then come lines with fields, an empty line and the body. "Idx=@" in a target stands
/// for the subscription that was created last.
std::vector<ScriptedRequest> ReadScript(std::string_view text, std::size_t most);

} // namespace zarn::fuzz
