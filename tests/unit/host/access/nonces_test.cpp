#include "host/access/nonces.h"

#include <gmock/gmock.h>

#include <string>

namespace zarn::host {
namespace {

using namespace std::chrono_literals;
using testing::Eq;
using testing::Optional;

Nonces::Clock::time_point const Created{100h};

TEST(Nonces, AreHexadecimal) { EXPECT_THAT(Nonces().Make(Created), testing::MatchesRegex("[0-9a-f]{64}")); }

TEST(Nonces, DifferEvenWhenCreatedAtTheSameTime) {
    Nonces nonces;
    EXPECT_NE(nonces.Make(Created), nonces.Make(Created));
}

TEST(Nonces, EncodeTheirCreationTimeInMilliseconds) {
    Nonces nonces;
    EXPECT_THAT(nonces.GetTime(nonces.Make(Created)), Optional(Created));
    EXPECT_THAT(nonces.GetTime(nonces.Make(Created + 1999us)), Optional(Created + 1ms));
}

TEST(Nonces, OfOthersAreNotRecognised) {
    Nonces others;
    EXPECT_THAT(Nonces().GetTime(others.Make(Created)), Eq(std::nullopt));
}

TEST(Nonces, AreNotRecognisedWhenAnyCharacterIsChanged) {
    Nonces nonces;
    auto const nonce = nonces.Make(Created);
    for (std::size_t i = 0; i < nonce.size(); ++i) {
        auto changed = nonce;
        changed[i] = changed[i] == '0' ? '1' : '0';
        EXPECT_THAT(nonces.GetTime(changed), Eq(std::nullopt)) << i;
    }
}

TEST(Nonces, OfAnotherLengthAreNotRecognised) {
    Nonces nonces;
    EXPECT_THAT(nonces.GetTime(""), Eq(std::nullopt));
    EXPECT_THAT(nonces.GetTime(nonces.Make(Created) + "0"), Eq(std::nullopt));
    EXPECT_THAT(nonces.GetTime(nonces.Make(Created).substr(1)), Eq(std::nullopt));
}

} // namespace
} // namespace zarn::host
