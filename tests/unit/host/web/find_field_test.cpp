#include "host/web/find_field.h"
#include "web/fake_request.h"

#include <gtest/gtest.h>

namespace zarn::host::web {
namespace {

TEST(FindField, ComparesNamesWithoutCase) {
    FakeRequest const request(FakeRequest::Method::Get, "/", {{"AUTHORIZATION", "a"}, {"Host", "b"}});
    EXPECT_EQ(FindField(request, "Authorization"), "a");
    EXPECT_EQ(FindField(request, "host"), "b");
}

TEST(FindField, GivesNothingForAFieldThatIsNotThere) {
    EXPECT_EQ(FindField(FakeRequest(FakeRequest::Method::Get, "/"), "Host"), "");
}

} // namespace
} // namespace zarn::host::web
