#include <zarn/type/hash.h>

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace zarn::type {
namespace {

struct Vector {
    std::string_view text;
    std::uint32_t seed;
    std::uint32_t hash;
};

using namespace std::string_view_literals;

constexpr std::array Vectors{
    Vector{"", 0, 0},
    Vector{"", 1, 0x514e28b7},
    Vector{"", 0xffffffff, 0x81f16f39},
    Vector{"\xff\xff\xff\xff", 0, 0x76293b50},
    Vector{"\x21\x43\x65\x87", 0, 0xf55b516b},
    Vector{"\x21\x43\x65\x87", 0x5082edee, 0x2362f9de},
    Vector{"\x21\x43\x65", 0, 0x7e4a8634},
    Vector{"\x21\x43", 0, 0xa0f7b07a},
    Vector{"\x21", 0, 0x72661cf4},
    Vector{"\0\0\0\0"sv, 0, 0x2362f9de},
    Vector{"\0\0\0"sv, 0, 0x85f0b427},
    Vector{"\0\0"sv, 0, 0x30f4c306},
    Vector{"\0"sv, 0, 0x514e28b7},
    Vector{"abc", 0x9747b28c, 0xc84a62dd},
    Vector{"Hello, world!", 0x9747b28c, 0x24884cba},
    Vector{"The quick brown fox jumps over the lazy dog", 0x9747b28c, 0x2fa826cd},
};

TEST(Hash, ReturnsThePublishedHashes) {
    for (auto const& vector : Vectors) EXPECT_EQ(MurmurHash3(vector.text, vector.seed), vector.hash) << vector.text;
}

/// The verification from the algorithm's own test suite, over all lengths up to 255.
TEST(Hash, PassesThePublishedVerification) {
    std::string key;
    std::string hashes;
    for (unsigned length = 0; length < 256; ++length) {
        auto const hash = MurmurHash3(key, 256 - length);
        for (unsigned shift = 0; shift < 32; shift += 8) hashes += static_cast<char>(hash >> shift & 0xff);
        key += static_cast<char>(length);
    }
    EXPECT_EQ(MurmurHash3(hashes, 0), 0xb0f57ee3);
}

TEST(Hash, IsKnownAtCompileTime) {
    static_assert(MurmurHash3("\x21\x43\x65\x87", 0) == 0xf55b516b);
    static_assert(Hash("zarn.configuration.node.Bool") == MurmurHash3("zarn.configuration.node.Bool", 183462145));
    static_assert(Hash("a") != Hash("b"));
}

} // namespace
} // namespace zarn::type
