#include "host/video/access_unit.h"

#include <gtest/gtest.h>

namespace zarn::host::video {
namespace {

AccessUnitPtr Unit(bool isKey, std::size_t size = 10) {
    auto unit = std::make_shared<AccessUnit>();
    unit->isKey = isKey;
    unit->size = size;
    return unit;
}

TEST(GroupOfPictures, IsEmptyBeforeTheFirstKeyFrame) {
    GroupOfPictures group;
    group.Add(Unit(false));
    EXPECT_TRUE(group.GetUnits().empty());
}

TEST(GroupOfPictures, GrowsFromAKeyFrameOn) {
    GroupOfPictures group;
    group.Add(Unit(true));
    group.Add(Unit(false));
    group.Add(Unit(false));
    EXPECT_EQ(group.GetUnits().size(), 3);
}

TEST(GroupOfPictures, RestartsAtEveryKeyFrame) {
    GroupOfPictures group;
    group.Add(Unit(true));
    group.Add(Unit(false));
    auto const key = Unit(true);
    group.Add(key);
    EXPECT_EQ(group.GetUnits(), AccessUnits{key});
}

TEST(GroupOfPictures, IsDiscardedWhenItHasTooManyPictures) {
    GroupOfPictures group({3, 1000});
    for (int count = 0; count < 3; ++count) group.Add(Unit(count == 0));
    EXPECT_EQ(group.GetUnits().size(), 3);
    group.Add(Unit(false));
    EXPECT_TRUE(group.GetUnits().empty());
    group.Add(Unit(false));
    EXPECT_TRUE(group.GetUnits().empty());
    group.Add(Unit(true));
    EXPECT_EQ(group.GetUnits().size(), 1);
}

TEST(GroupOfPictures, IsDiscardedWhenItHasTooManyBytes) {
    GroupOfPictures group({100, 25});
    group.Add(Unit(true, 20));
    group.Add(Unit(false, 6));
    EXPECT_TRUE(group.GetUnits().empty());
    group.Add(Unit(true, 26));
    EXPECT_TRUE(group.GetUnits().empty());
    group.Add(Unit(true, 25));
    EXPECT_EQ(group.GetUnits().size(), 1);
}

TEST(GroupOfPictures, IsEmptyAfterClear) {
    GroupOfPictures group;
    group.Add(Unit(true));
    group.Clear();
    group.Add(Unit(false));
    EXPECT_TRUE(group.GetUnits().empty());
}

} // namespace
} // namespace zarn::host::video
