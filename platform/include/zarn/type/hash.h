#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zarn::type {

/// The seed of every type hash.
inline constexpr std::uint32_t HashSeed = 183462145;

/// The MurmurHash3 x86 32-bit hash of the bytes of a text.
/// Usable at compile time; the same on machines of either byte order. Thread: any.
/// Source: Austin Appleby, MurmurHash3 (public domain), variant x86_32.
constexpr std::uint32_t MurmurHash3(std::string_view text, std::uint32_t seed) noexcept {
    constexpr std::uint32_t first = 0xcc9e2d51;
    constexpr std::uint32_t second = 0x1b873593;
    constexpr auto byte = [](char character) { return std::uint32_t{static_cast<unsigned char>(character)}; };
    constexpr auto scramble = [](std::uint32_t block) { return std::rotl(block * first, 15) * second; };

    std::uint32_t hash = seed;
    std::size_t position = 0;
    for (; position + 4 <= text.size(); position += 4) {
        std::uint32_t const block = byte(text[position]) | byte(text[position + 1]) << 8 |
                                    byte(text[position + 2]) << 16 | byte(text[position + 3]) << 24;
        hash = std::rotl(hash ^ scramble(block), 13) * 5 + 0xe6546b64;
    }
    std::uint32_t tail = 0;
    for (std::size_t last = text.size(); last > position; --last) tail = tail << 8 | byte(text[last - 1]);
    hash ^= scramble(tail);

    hash ^= static_cast<std::uint32_t>(text.size());
    hash = (hash ^ hash >> 16) * 0x85ebca6b;
    hash = (hash ^ hash >> 13) * 0xc2b2ae35;
    return hash ^ hash >> 16;
}

/// The hash by which object types are told apart: MurmurHash3 of the type name with HashSeed.
constexpr std::uint32_t Hash(std::string_view typeName) noexcept { return MurmurHash3(typeName, HashSeed); }

} // namespace zarn::type
