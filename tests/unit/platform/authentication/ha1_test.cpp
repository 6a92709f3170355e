#include <zarn/authentication/ha1.h>
#include <zarn/authentication/realm.h>

#include <gtest/gtest.h>

namespace zarn::authentication {
namespace {

TEST(MakeHa1, IsTheMd5OfUserRealmAndPassword) {
    // The user of RFC 2617, 3.5.
    EXPECT_EQ(MakeHa1("Mufasa", "testrealm@host.com", "Circle Of Life"), "939e7578ed9e3c518a452acee763bce9");
}

TEST(MakeHa1, AcceptsEmptyParts) { EXPECT_EQ(MakeHa1("", "", ""), "4501c091b0366d76ea3218b6cfdd8097"); }

TEST(Realm, IsADomainOfSeventeenCharacters) { EXPECT_EQ(std::string_view(Realm).size(), 17U); }

} // namespace
} // namespace zarn::authentication
