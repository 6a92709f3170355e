#include <zarn/meta/meta.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace zarn::meta {
namespace {

using namespace std::chrono_literals;
using std::chrono::sys_days;
using std::chrono::sys_seconds;

TEST(MetadataFrame, ReturnsItsTimeAndItsObjectsInOrder) {
    auto const time = sys_seconds(1'700'000'000s);
    TrackedObject const object{7, {{0, 0}, {1, 1}}, {0.5, 0.5}, {data::classification::Confidence("person")}, {}};
    auto other = object;
    other.number = 3;
    Meta const frame(time, {object, other});
    EXPECT_EQ(frame.GetTime(), time);
    ASSERT_EQ(frame.GetObjects().size(), 2U);
    EXPECT_EQ(frame.GetObjects()[0].number, 7U);
    EXPECT_EQ(frame.GetObjects()[0].classes.at(0).GetClass(), "person");
    EXPECT_EQ(frame.GetObjects()[1].number, 3U);
}

TEST(MetadataFrame, MayHaveNoObjects) { EXPECT_TRUE(Meta(sys_seconds(), {}).GetObjects().empty()); }

TEST(MetadataFrame, AcceptsOnlyTheYears1970To9999) {
    sys_seconds const end = sys_days(10000y / 1 / 1);
    EXPECT_EQ(Meta(sys_seconds(), {}).GetTime(), sys_seconds());
    EXPECT_EQ(Meta(end - 1s, {}).GetTime(), end - 1s);
    EXPECT_THROW(Meta(sys_seconds(-1s), {}), std::invalid_argument);
    EXPECT_THROW(Meta(end, {}), std::invalid_argument);
}

} // namespace
} // namespace zarn::meta
