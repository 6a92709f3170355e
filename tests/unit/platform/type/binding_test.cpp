#include <zarn/type/binding.h>

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>
#include <utility>

namespace zarn::type {
namespace {

class BindingTest : public testing::Test {
protected:
    Binding Make() {
        return Binding([this] { ++released; });
    }

    int released = 0;
};

TEST_F(BindingTest, HoldsNothingByDefault) { EXPECT_FALSE(Binding()); }

TEST_F(BindingTest, HoldsNothingWhenConstructedFromAnEmptyFunction) { EXPECT_FALSE(Binding(nullptr)); }

TEST_F(BindingTest, ReleasesOnceWhenDestroyed) {
    {
        auto const binding = Make();
        EXPECT_TRUE(binding);
        EXPECT_EQ(released, 0);
    }
    EXPECT_EQ(released, 1);
}

TEST_F(BindingTest, ReleasesOnceWhenResetTwice) {
    auto binding = Make();
    binding.Reset();
    binding.Reset();
    EXPECT_FALSE(binding);
    EXPECT_EQ(released, 1);
}

TEST_F(BindingTest, ReleasesWhatItHeldWhenAssignedTo) {
    auto binding = Make();
    binding = Binding();
    EXPECT_EQ(released, 1);
    EXPECT_FALSE(binding);
}

TEST_F(BindingTest, DoesNotReleaseWhenMoved) {
    auto first = Make();
    Binding second = std::move(first);
    Binding third;
    third = std::move(second);
    EXPECT_EQ(released, 0);
    third.Reset();
    EXPECT_EQ(released, 1);
}

TEST_F(BindingTest, SurvivesAssignmentToItself) {
    auto binding = Make();
    auto& same = binding;
    binding = std::move(same);
    EXPECT_TRUE(binding);
    EXPECT_EQ(released, 0);
}

TEST_F(BindingTest, MayDestroyItsOwnerWhenReleased) {
    auto owner = std::make_unique<Binding>();
    *owner = Binding([&] {
        ++released;
        owner.reset();
    });
    owner->Reset();
    EXPECT_EQ(released, 1);
    EXPECT_EQ(owner, nullptr);
}

TEST_F(BindingTest, CannotBeCopied) {
    static_assert(!std::is_copy_constructible_v<Binding>);
    static_assert(std::is_nothrow_move_constructible_v<Binding>);
}

} // namespace
} // namespace zarn::type
