#pragma once

#include <zarn/text/character.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace zarn::fuzz {

/// Aborts the run with a finding when a required property does not hold.
/// rule  the property, a literal
inline void Require(bool holds, char const* rule) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", rule);
    std::abort();
}

/// Runs the check on an input of at most `most` bytes. Returns the result of LLVMFuzzerTestOneInput.
template <class Check>
int CheckInput(std::uint8_t const* data, std::size_t size, std::size_t most, Check check) {
    if (size <= most) check(std::string_view(reinterpret_cast<char const*>(data), size));
    return 0;
}

/// True if the text is a single printable line for users and logs: no control characters, at most `most` bytes.
inline bool IsLine(std::string_view text, std::size_t most) {
    return !text.empty() && text.size() <= most && text::IsLine(text);
}

} // namespace zarn::fuzz
