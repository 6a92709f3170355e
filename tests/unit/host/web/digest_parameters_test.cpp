#include "host/web/digest_parameters.h"

#include <gmock/gmock.h>

namespace zarn::host::web {
namespace {

using testing::Optional;
using testing::Pair;
using testing::UnorderedElementsAre;

TEST(DigestParameters, AreReadWithAndWithoutQuotes) {
    EXPECT_THAT(ParseDigestParameters(R"(Digest username="admin", qop=auth,nc=00000001 , uri="/a,b=c")"),
                Optional(UnorderedElementsAre(Pair("username", "admin"), Pair("qop", "auth"), Pair("nc", "00000001"),
                                              Pair("uri", "/a,b=c"))));
}

TEST(DigestParameters, HaveNamesWithoutCase) {
    EXPECT_THAT(ParseDigestParameters("dIGEST Username=a"), Optional(UnorderedElementsAre(Pair("username", "a"))));
}

TEST(DigestParameters, LoseTheirEscapes) {
    EXPECT_THAT(ParseDigestParameters(R"(Digest a="x\"y\\z")"), Optional(UnorderedElementsAre(Pair("a", R"(x"y\z)"))));
}

TEST(DigestParameters, MayBeEmpty) {
    EXPECT_THAT(ParseDigestParameters(R"(Digest a="",b=)"),
                Optional(UnorderedElementsAre(Pair("a", ""), Pair("b", ""))));
}

TEST(DigestParameters, MayHaveBlanksAroundTheirSigns) {
    EXPECT_THAT(ParseDigestParameters("Digest \t a = \"1\" ,\tb = 2 "),
                Optional(UnorderedElementsAre(Pair("a", "1"), Pair("b", "2"))));
}

TEST(DigestParameters, AreNoneInATextOfAnotherForm) {
    for (auto const* text :
         {"", "Digest", "Digest ", "Basic YTpi", "Digest a", "Digest =1", "Digest a=\"1", "Digest a=\"1\\",
          "Digest a=\"1\" b=2", "Digest a=1, A=2", "Digest \"a\"=1", "Digest a=1,,b=2", "Digest ,", "DigestX a=1"}) {
        EXPECT_FALSE(ParseDigestParameters(text)) << text;
    }
}

TEST(BlanksBeforeSeparators, AreRemoved) {
    EXPECT_EQ(RemoveBlanksBeforeSeparators("Digest  a \t= 1 , b=2\t,\tc=\"3\" ,d=4 "),
              "Digest  a= 1, b=2,\tc=\"3\",d=4 ");
    EXPECT_EQ(RemoveBlanksBeforeSeparators(""), "");
    EXPECT_EQ(RemoveBlanksBeforeSeparators(" ,"), ",");
}

TEST(BlanksBeforeSeparators, StayInQuotedTexts) {
    for (auto const* text : {R"(Digest a="1 ,2 =3",b=4)", R"(Digest a="1\" ,2 =3",b=4)", R"(Digest a="1 ,2\)",
                             R"(Digest a="\\", b="3 ,4")"}) {
        EXPECT_EQ(RemoveBlanksBeforeSeparators(text), text);
    }
    EXPECT_EQ(RemoveBlanksBeforeSeparators(R"(Digest a="\\" ,b=3)"), R"(Digest a="\\",b=3)");
}

} // namespace
} // namespace zarn::host::web
