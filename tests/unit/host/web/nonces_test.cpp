#include "host/web/nonces.h"

#include <gmock/gmock.h>

#include <cstddef>

namespace zarn::host::web {
namespace {

using namespace std::chrono_literals;
using testing::Eq;
using testing::Optional;

Nonces::Clock::time_point const Now{100h};

TEST(Nonces, AreHexadecimal) { EXPECT_THAT(Nonces().Make(Now), testing::MatchesRegex("[0-9a-f]{64}")); }

TEST(Nonces, DifferAlsoWhenTheyAreMadeAtTheSameTime) {
    Nonces nonces;
    EXPECT_NE(nonces.Make(Now), nonces.Make(Now));
}

TEST(Nonces, TellWhenTheyWereMadeToTheMillisecond) {
    Nonces nonces;
    EXPECT_THAT(nonces.GetTime(nonces.Make(Now)), Optional(Now));
    EXPECT_THAT(nonces.GetTime(nonces.Make(Now + 1999us)), Optional(Now + 1ms));
}

TEST(Nonces, OfOthersAreNotRecognised) {
    Nonces others;
    EXPECT_THAT(Nonces().GetTime(others.Make(Now)), Eq(std::nullopt));
}

TEST(Nonces, AreNotRecognisedWhenAnyCharacterIsChanged) {
    Nonces nonces;
    auto const nonce = nonces.Make(Now);
    for (std::size_t i = 0; i < nonce.size(); ++i) {
        auto changed = nonce;
        changed[i] = changed[i] == '0' ? '1' : '0';
        EXPECT_THAT(nonces.GetTime(changed), Eq(std::nullopt)) << i;
    }
}

TEST(Nonces, OfAnotherLengthAreNotRecognised) {
    Nonces nonces;
    EXPECT_THAT(nonces.GetTime(""), Eq(std::nullopt));
    EXPECT_THAT(nonces.GetTime(nonces.Make(Now) + "0"), Eq(std::nullopt));
    EXPECT_THAT(nonces.GetTime(nonces.Make(Now).substr(1)), Eq(std::nullopt));
}

} // namespace
} // namespace zarn::host::web
