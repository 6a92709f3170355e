#include "host/web/find_field.h"

#include <gtest/gtest.h>

namespace zarn::host::web {
namespace {

TEST(FindField, ComparesNamesWithoutCase) {
    EXPECT_EQ(FindField({{"AUTHORIZATION", "a"}, {"Host", "b"}}, "Authorization"), "a");
    EXPECT_EQ(FindField({{"AUTHORIZATION", "a"}, {"Host", "b"}}, "host"), "b");
}

TEST(FindField, GivesNothingForAFieldThatIsNotThere) { EXPECT_EQ(FindField({}, "Host"), ""); }

} // namespace
} // namespace zarn::host::web
