#include "host/web/nonces.h"

#include <gmock/gmock.h>

namespace zarn::host::web {
namespace {

using namespace std::chrono_literals;

Nonces::Clock::time_point const Now{100h};

TEST(Nonces, AreHexadecimal) { EXPECT_THAT(Nonces().Make(Now), testing::MatchesRegex("[0-9a-f]{48}")); }

TEST(Nonces, DifferWithTime) {
    Nonces const nonces;
    EXPECT_NE(nonces.Make(Now), nonces.Make(Now + 1ms));
}

TEST(Nonces, AreFreshForTheirLifetime) {
    Nonces const nonces;
    auto const nonce = nonces.Make(Now);
    EXPECT_TRUE(nonces.IsFresh(nonce, Now));
    EXPECT_TRUE(nonces.IsFresh(nonce, Now + Nonces::Lifetime));
    EXPECT_FALSE(nonces.IsFresh(nonce, Now + Nonces::Lifetime + 1ms));
}

TEST(Nonces, OfTheFutureAreNotFresh) {
    Nonces const nonces;
    EXPECT_FALSE(nonces.IsFresh(nonces.Make(Now + 1ms), Now));
}

TEST(Nonces, OfOthersAreNotFresh) { EXPECT_FALSE(Nonces().IsFresh(Nonces().Make(Now), Now)); }

TEST(Nonces, AreNotFreshWhenAnyCharacterIsChanged) {
    Nonces const nonces;
    auto const nonce = nonces.Make(Now);
    for (std::size_t i = 0; i < nonce.size(); ++i) {
        auto changed = nonce;
        changed[i] = changed[i] == '0' ? '1' : '0';
        EXPECT_FALSE(nonces.IsFresh(changed, Now)) << i;
    }
}

TEST(Nonces, OfAnotherLengthAreNotFresh) {
    Nonces const nonces;
    EXPECT_FALSE(nonces.IsFresh("", Now));
    EXPECT_FALSE(nonces.IsFresh(nonces.Make(Now) + "0", Now));
    EXPECT_FALSE(nonces.IsFresh(nonces.Make(Now).substr(1), Now));
}

} // namespace
} // namespace zarn::host::web
