#include <zarn/object/container/typed_view.h>
#include <zarn/object/primitive.h>

#include <gmock/gmock.h>

#include <iterator>

namespace zarn::object::container {
namespace {

using Int = Primitive<std::int32_t>;
using Text = Primitive<std::string>;
using Elements = std::vector<std::shared_ptr<Object const>>;

std::vector<int> Values(TypedView<Int> const& view) {
    std::vector<int> values;
    for (Int const& element : view) values.push_back(element.Get());
    return values;
}

TEST(TypedView, ReturnsTheObjectsOfItsTypeInOrder) {
    Elements const elements{std::make_shared<Text>("a"), std::make_shared<Int>(3), std::make_shared<Text>("b"),
                            std::make_shared<Int>(1),    std::make_shared<Int>(3), std::make_shared<Text>("c")};
    EXPECT_THAT(Values(TypedView<Int>(elements)), testing::ElementsAre(3, 1, 3));
    EXPECT_EQ(std::distance(TypedView<Object>(elements).begin(), TypedView<Object>(elements).end()), 6);
}

TEST(TypedView, IsEmptyWhenNoObjectIsOfItsType) {
    EXPECT_TRUE(TypedView<Int>(Elements()).empty());
    Elements const elements{std::make_shared<Text>("a")};
    EXPECT_TRUE(TypedView<Int>(elements).empty());
    EXPECT_FALSE(TypedView<Text>(elements).empty());
}

TEST(TypedView, ReturnsReferencesToTheObjects) {
    auto const text = std::make_shared<Text>("a");
    Elements const elements{text};
    EXPECT_EQ(&*TypedView<Text>(elements).begin(), text.get());
    EXPECT_EQ(TypedView<Text>(elements).begin()->Get(), "a");
}

TEST(TypedView, IsWalkedMoreThanOnce) {
    Elements const elements{std::make_shared<Int>(1), std::make_shared<Int>(2)};
    TypedView<Int> const view(elements);
    auto walker = view.begin();
    auto const first = walker++;
    EXPECT_EQ(first->Get(), 1);
    EXPECT_EQ(walker->Get(), 2);
    EXPECT_EQ(++walker, view.end());
    static_assert(std::forward_iterator<TypedView<Int>::Iterator>);
}

} // namespace
} // namespace zarn::object::container
