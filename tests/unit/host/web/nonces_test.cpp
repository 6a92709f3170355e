#include "host/web/nonces.h"

#include <gmock/gmock.h>

#include <cstddef>

namespace zarn::host::web {
namespace {

using namespace std::chrono_literals;
using testing::Eq;
using testing::Optional;

Nonces::Clock::time_point const Start{100h};

TEST(Nonces, AreHexadecimal) { EXPECT_THAT(Nonces().Make(Start), testing::MatchesRegex("[0-9a-f]{64}")); }

TEST(Nonces, DifferAlsoWhenTheyAreMadeAtTheSameTime) {
    Nonces nonces;
    EXPECT_NE(nonces.Make(Start), nonces.Make(Start));
}

TEST(Nonces, TellWhenTheyWereMadeToTheMillisecond) {
    Nonces nonces;
    EXPECT_THAT(nonces.GetTime(nonces.Make(Start)), Optional(Start));
    EXPECT_THAT(nonces.GetTime(nonces.Make(Start + 1999us)), Optional(Start + 1ms));
}

TEST(Nonces, OfOthersAreNotRecognised) {
    Nonces others;
    EXPECT_THAT(Nonces().GetTime(others.Make(Start)), Eq(std::nullopt));
}

TEST(Nonces, AreNotRecognisedWhenAnyCharacterIsChanged) {
    Nonces nonces;
    auto const nonce = nonces.Make(Start);
    for (std::size_t i = 0; i < nonce.size(); ++i) {
        auto changed = nonce;
        changed[i] = changed[i] == '0' ? '1' : '0';
        EXPECT_THAT(nonces.GetTime(changed), Eq(std::nullopt)) << i;
    }
}

TEST(Nonces, OfAnotherLengthAreNotRecognised) {
    Nonces nonces;
    EXPECT_THAT(nonces.GetTime(""), Eq(std::nullopt));
    EXPECT_THAT(nonces.GetTime(nonces.Make(Start) + "0"), Eq(std::nullopt));
    EXPECT_THAT(nonces.GetTime(nonces.Make(Start).substr(1)), Eq(std::nullopt));
}

} // namespace
} // namespace zarn::host::web
