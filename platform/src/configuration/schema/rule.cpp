#include <zarn/configuration/schema/rule.h>
#include <zarn/text/character.h>

#include <algorithm>

namespace zarn::configuration::schema {

namespace {

constexpr std::size_t MaximumLineBytes = 256;

bool IsLine(std::string const& text) { return text.size() <= MaximumLineBytes && zarn::text::IsXmlLine(text); }

/// In valid UTF-8 each character has one byte that continues none.
std::size_t CountCharacters(std::string const& text) {
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

} // namespace

Rule<std::uint32_t> Between(std::uint32_t least, std::uint32_t most) {
    return {"a number from " + std::to_string(least) + " to " + std::to_string(most),
            [least, most](std::uint32_t value) { return value >= least && value <= most; }};
}

Rule<std::uint16_t> Port() { return {"a port (0 to 65535; 0 takes a free one)", {}}; }

Rule<std::string> Line() {
    return {"a line of at most 256 bytes of UTF-8 without characters that XML cannot carry", IsLine};
}

Rule<std::string> Line(std::size_t characters) {
    return {"a line of at most " + std::to_string(characters) +
                " characters of UTF-8 without those that XML cannot carry",
            [characters](std::string const& text) { return IsLine(text) && CountCharacters(text) <= characters; }};
}

} // namespace zarn::configuration::schema
