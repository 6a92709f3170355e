#include "host/video/rtsp/base64_decoder.h"

#include <zarn/text/character.h>

namespace zarn::host::video::rtsp {
namespace {

constexpr std::string_view Alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr int GroupSize = 4;
constexpr int MostPadding = 2;

} // namespace

std::optional<std::string> Base64Decoder::Decode(std::string_view text) {
    std::string bytes;
    for (char const character : text) {
        if (text::WhiteSpace.find(character) != std::string_view::npos) continue;
        auto const value = Alphabet.find(character);
        bool const isPadding = character == '=';
        if (isPadding ? ++padding > MostPadding : value == std::string_view::npos || padding > 0) return std::nullopt;
        if (isPadding && characters < GroupSize - MostPadding) return std::nullopt;
        bits = bits << 6 | (isPadding ? 0U : static_cast<std::uint32_t>(value));
        if (++characters < GroupSize) continue;
        for (int index = 0; index < 3 - padding; ++index) bytes += static_cast<char>(bits >> (16 - 8 * index) & 0xFF);
        bits = 0;
        characters = 0;
        padding = 0;
    }
    return bytes;
}

} // namespace zarn::host::video::rtsp
