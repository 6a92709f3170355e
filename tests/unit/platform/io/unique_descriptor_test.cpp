#include <zarn/io/unique_descriptor.h>

#include <fcntl.h>
#include <gtest/gtest.h>

#include <optional>

namespace zarn::io {
namespace {

bool IsOpen(int descriptor) { return fcntl(descriptor, F_GETFD) >= 0; }

UniqueDescriptor Open() { return UniqueDescriptor(open("/dev/null", O_RDONLY | O_CLOEXEC)); }

TEST(UniqueDescriptor, ClosesItsDescriptor) {
    std::optional owner(Open());
    ASSERT_TRUE(*owner);
    int const number = owner->Get();
    EXPECT_TRUE(IsOpen(number));
    owner.reset();
    EXPECT_FALSE(IsOpen(number));
}

TEST(UniqueDescriptor, IsNoneWhenNegative) {
    EXPECT_FALSE(UniqueDescriptor());
    EXPECT_FALSE(UniqueDescriptor(-1));
}

TEST(UniqueDescriptor, HandsItsDescriptorOver) {
    auto first = Open();
    int const number = first.Get();
    auto second = std::move(first);
    EXPECT_FALSE(first); // NOLINT: tests the moved-from state
    UniqueDescriptor const third(second.Release());
    EXPECT_FALSE(second);
    EXPECT_EQ(third.Get(), number);
    EXPECT_TRUE(IsOpen(number));
}

} // namespace
} // namespace zarn::io
