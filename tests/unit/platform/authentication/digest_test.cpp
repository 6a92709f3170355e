#include <zarn/authentication/digest.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace zarn::authentication {
namespace {

// The example of RFC 2617, 3.5.
constexpr DigestInput Example{
    .ha1 = "939e7578ed9e3c518a452acee763bce9",
    .method = "GET",
    .uri = "/dir/index.html",
    .nonce = "dcd98b7102dd2f0e8b11d0f600bfb0c093",
    .nc = "00000001",
    .cnonce = "0a4f113b",
    .qop = "auth",
};

TEST(MakeDigestResponse, AnswersTheExampleOfTheStandard) {
    EXPECT_EQ(MakeDigestResponse(Example), "6629fae49393a05397450978507c4ef1");
}

TEST(MakeDigestResponse, HasAnOlderFormWithoutQop) {
    auto input = Example;
    input.qop = "";
    EXPECT_EQ(MakeDigestResponse(input), "670fd8c2df070c60b045671b8b24ff02");
    input.nc = "7";
    input.cnonce = "other";
    EXPECT_EQ(MakeDigestResponse(input), "670fd8c2df070c60b045671b8b24ff02");
}

TEST(MakeDigestResponse, DependsOnEachPart) {
    for (auto const part : {&DigestInput::ha1, &DigestInput::method, &DigestInput::uri, &DigestInput::nonce,
                            &DigestInput::nc, &DigestInput::cnonce, &DigestInput::qop}) {
        auto input = Example;
        input.*part = "other";
        EXPECT_NE(MakeDigestResponse(input), MakeDigestResponse(Example));
    }
}

TEST(IsDigestResponse, IsTrueOnlyForTheRightAnswer) {
    std::string const right = "6629fae49393a05397450978507c4ef1";
    EXPECT_TRUE(IsDigestResponse(Example, right));
    for (std::size_t at = 0; at < right.size(); ++at) {
        auto wrong = right;
        wrong[at] = wrong[at] == '0' ? '1' : '0';
        EXPECT_FALSE(IsDigestResponse(Example, wrong)) << at;
    }
}

TEST(IsDigestResponse, IsFalseForAnAnswerOfAnotherLength) {
    std::string const right = "6629fae49393a05397450978507c4ef1";
    for (auto const& wrong : {std::string(), right.substr(1), right.substr(0, 31), right + "0"}) {
        EXPECT_FALSE(IsDigestResponse(Example, wrong));
    }
}

} // namespace
} // namespace zarn::authentication
