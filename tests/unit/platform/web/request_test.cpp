#include "support/test_request.h"

#include <gtest/gtest.h>

namespace zarn::web {
namespace {

TEST(Request, FindsAFieldWhateverTheCaseOfItsName) {
    test::TestRequest const request(test::TestRequest::Method::Get, "/", {{"AUTHORIZATION", "a"}, {"Host", "b"}});
    EXPECT_EQ(request.FindField("Authorization"), "a");
    EXPECT_EQ(request.FindField("host"), "b");
}

TEST(Request, FindsNothingForAFieldThatItDoesNotHave) {
    EXPECT_EQ(test::TestRequest(test::TestRequest::Method::Get, "/").FindField("Host"), "");
}

} // namespace
} // namespace zarn::web
