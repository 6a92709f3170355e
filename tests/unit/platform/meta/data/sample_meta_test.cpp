#include <zarn/meta/data/sample_meta.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zarn::meta::data {
namespace {

using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

bool Contains(Box const& box, Point const& point) {
    return box.GetTopLeft().GetX() <= point.GetX() && point.GetX() <= box.GetBottomRight().GetX() &&
           box.GetTopLeft().GetY() <= point.GetY() && point.GetY() <= box.GetBottomRight().GetY();
}

TEST(SampleMeta, HasTwoObjectsWithinThePicture) {
    auto const frame = GetSampleMeta();
    ASSERT_THAT(frame.GetObjects(), SizeIs(2));
    EXPECT_NE(frame.GetObjects()[0].number, frame.GetObjects()[1].number);
    Box const picture({0, 0}, {1, 1});
    for (auto const& object : frame.GetObjects()) {
        EXPECT_TRUE(Contains(picture, object.boundingBox.GetTopLeft()));
        EXPECT_TRUE(Contains(picture, object.boundingBox.GetBottomRight()));
        EXPECT_TRUE(Contains(object.boundingBox, object.centerOfGravity));
    }
}

TEST(SampleMeta, ClassifiesBothObjectsAndKnowsTheColourOfOne) {
    auto const frame = GetSampleMeta();
    int colours = 0;
    for (auto const& object : frame.GetObjects()) {
        EXPECT_THAT(object.classes, Not(IsEmpty()));
        for (auto const& candidate : object.classes) EXPECT_FALSE(candidate.GetClass().empty());
        colours += object.color.has_value();
    }
    EXPECT_EQ(colours, 1);
}

TEST(SampleMeta, IsTheSameEveryTime) {
    auto const first = GetSampleMeta();
    auto const second = GetSampleMeta();
    EXPECT_GT(first.GetTime(), std::chrono::sys_seconds());
    EXPECT_EQ(first.GetTime(), second.GetTime());
    ASSERT_EQ(first.GetObjects().size(), second.GetObjects().size());
    for (std::size_t i = 0; i < first.GetObjects().size(); ++i) {
        EXPECT_EQ(first.GetObjects()[i].number, second.GetObjects()[i].number);
        EXPECT_EQ(first.GetObjects()[i].boundingBox, second.GetObjects()[i].boundingBox);
    }
}

} // namespace
} // namespace zarn::meta::data
