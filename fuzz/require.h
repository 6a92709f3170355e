#pragma once

#include <zarn/text/character.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace zarn::fuzz {

/// Ends the run with a finding when what must hold does not.
/// rule  what must hold, a literal
inline void Require(bool holds, char const* rule) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", rule);
    std::abort();
}

/// Runs the check of an input that is not longer than `most` bytes; what LLVMFuzzerTestOneInput returns.
template <class Check>
int CheckInput(std::uint8_t const* data, std::size_t size, std::size_t most, Check check) {
    if (size <= most) check(std::string_view(reinterpret_cast<char const*>(data), size));
    return 0;
}

/// Whether a text is one line that can be shown to a person and written into a log: no control characters, no more than
/// `most` bytes.
inline bool IsLine(std::string_view text, std::size_t most) {
    return !text.empty() && text.size() <= most && text::IsLine(text);
}

} // namespace zarn::fuzz
