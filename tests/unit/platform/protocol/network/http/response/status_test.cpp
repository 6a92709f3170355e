#include <zarn/protocol/network/http/response/status.h>

#include <gtest/gtest.h>

namespace zarn::protocol::network::http::response {
namespace {

TEST(Status, HasTheProvisionalValueThatPendingResponsesUse) {
    EXPECT_EQ(static_cast<int>(Status::Provisional), 2);
    EXPECT_EQ(ToString(Status::Provisional), "");
}

TEST(Status, HasTheReasonPhraseOfItsCode) {
    EXPECT_EQ(ToString(Status{200}), "OK");
    EXPECT_EQ(ToString(Status{405}), "Method Not Allowed");
    EXPECT_EQ(ToString(Status{414}), "URI Too Long");
    EXPECT_EQ(ToString(Status{431}), "Request Header Fields Too Large");
    EXPECT_EQ(ToString(Status{511}), "Network Authentication Required");
}

TEST(Status, WithoutANameHasNoReasonPhrase) { EXPECT_EQ(ToString(Status{299}), ""); }

} // namespace
} // namespace zarn::protocol::network::http::response
