#include "host/access/digest_parameters.h"

#include <gmock/gmock.h>

namespace zarn::host {
namespace {

using testing::Optional;
using testing::Pair;
using testing::UnorderedElementsAre;

TEST(DigestParameters, AreReadWithAndWithoutQuotes) {
    EXPECT_THAT(ParseDigestParameters(R"(Digest username="admin", qop=auth,nc=00000001 , uri="/a,b=c")"),
                Optional(UnorderedElementsAre(Pair("username", "admin"), Pair("qop", "auth"), Pair("nc", "00000001"),
                                              Pair("uri", "/a,b=c"))));
}

TEST(DigestParameters, IgnoreTheCaseOfNames) {
    EXPECT_THAT(ParseDigestParameters("dIGEST Username=a"), Optional(UnorderedElementsAre(Pair("username", "a"))));
}

TEST(DigestParameters, AreUnescaped) {
    EXPECT_THAT(ParseDigestParameters(R"(Digest a="x\"y\\z")"), Optional(UnorderedElementsAre(Pair("a", R"(x"y\z)"))));
}

TEST(DigestParameters, MayBeEmpty) {
    EXPECT_THAT(ParseDigestParameters(R"(Digest a="",b=)"),
                Optional(UnorderedElementsAre(Pair("a", ""), Pair("b", ""))));
}

TEST(DigestParameters, MayHaveBlanksAroundSeparators) {
    EXPECT_THAT(ParseDigestParameters("Digest \t a = \"1\" ,\tb = 2 "),
                Optional(UnorderedElementsAre(Pair("a", "1"), Pair("b", "2"))));
}

TEST(DigestParameters, AreNotReadFromATextOfAnotherForm) {
    for (auto const* text :
         {"", "Digest", "Digest ", "Basic YTpi", "Digest a", "Digest =1", "Digest a=\"1", "Digest a=\"1\\",
          "Digest a=\"1\" b=2", "Digest a=1, A=2", "Digest \"a\"=1", "Digest a=1,,b=2", "Digest ,", "DigestX a=1"}) {
        EXPECT_FALSE(ParseDigestParameters(text)) << text;
    }
}

TEST(DigestParameters, AreFoundByName) {
    DigestParameters const parameters{{"nonce", "a"}};
    EXPECT_EQ(Find(parameters, "nonce"), "a");
    EXPECT_EQ(Find(parameters, "opaque"), "");
}

} // namespace
} // namespace zarn::host
