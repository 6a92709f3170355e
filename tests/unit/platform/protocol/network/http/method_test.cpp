#include <zarn/protocol/network/http/method.h>

#include <gtest/gtest.h>

namespace zarn::protocol::network::http {
namespace {

constexpr Method All[] = {Method::Get,     Method::Head,    Method::Post,  Method::Put,  Method::Delete,
                          Method::Connect, Method::Options, Method::Trace, Method::Patch};

TEST(Method, IsFoundByItsName) {
    for (auto const method : All) EXPECT_EQ(FromString(ToString(method)), method);
    EXPECT_EQ(ToString(Method::Post), "POST");
    EXPECT_EQ(FromString("GET"), Method::Get);
}

TEST(Method, IsNotFoundByAnotherName) {
    EXPECT_EQ(FromString("post"), std::nullopt);
    EXPECT_EQ(FromString(""), std::nullopt);
    EXPECT_EQ(FromString("BREW"), std::nullopt);
}

TEST(Method, WithoutANameHasAnEmptyText) { EXPECT_EQ(ToString(Method{99}), ""); }

} // namespace
} // namespace zarn::protocol::network::http
