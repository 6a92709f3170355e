#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::fuzz {

/// One request from a fuzzer input.
struct ScriptedRequest {
    bool isOpen = false;   ///< authentication is disabled
    bool isSigned = false; ///< a valid digest replaces any Authorization field
    bool hasEvent = false; ///< the host publishes an event first
    std::string target;
    std::map<std::string, std::string> fields;
    std::string body;
};

/// Parses an input into requests, in order and at most `most`, separated by lines "%%%". A request starts with a letter
/// whose lowest bits set the members above (A: open, B: signed, D: with an event; @: none), followed by the target.
/// Then come lines with fields, an empty line and the body. "Idx=@" in a target refers to the most recently created
/// subscription.
std::vector<ScriptedRequest> ReadScript(std::string_view text, std::size_t most);

} // namespace zarn::fuzz
