#include <zarn/object/container/const_iterator.h>

#include <gmock/gmock.h>

#include <string>

namespace zarn::object::container {
namespace {

using Iterator = ConstIterator<std::string>;
using Elements = std::vector<std::string>;

static_assert(std::forward_iterator<Iterator>);

std::shared_ptr<Elements const> Make(Elements elements) {
    return std::make_shared<Elements const>(std::move(elements));
}

TEST(ConstIterator, ReturnsTheElementsInOrder) {
    Elements seen;
    for (Iterator element(Make({"a", "b", "c"})); element != Iterator(); ++element) seen.push_back(*element);
    EXPECT_THAT(seen, testing::ElementsAre("a", "b", "c"));
}

TEST(ConstIterator, IsAtTheEndWhenThereIsNothing) {
    EXPECT_EQ(Iterator(Make({})), Iterator());
    EXPECT_EQ(Iterator(nullptr), Iterator());
}

TEST(ConstIterator, KeepsItsContainerAliveUntilTheEnd) {
    auto elements = Make({"a"});
    std::weak_ptr<Elements const> const weak = elements;
    Iterator element(std::move(elements));
    EXPECT_FALSE(weak.expired());
    EXPECT_EQ(element->size(), 1U);
    ++element;
    EXPECT_TRUE(weak.expired());
}

TEST(ConstIterator, ReturnsThePreviousElementOnPostIncrement) {
    Iterator element(Make({"a", "b"}));
    EXPECT_EQ(*element++, "a");
    EXPECT_EQ(*element, "b");
}

TEST(ConstIterator, DiffersByPlaceAndContainer) {
    auto const elements = Make({"a", "b"});
    Iterator const first(elements);
    Iterator second = first;
    EXPECT_EQ(first, second);
    ++second;
    EXPECT_NE(first, second);
    EXPECT_NE(first, Iterator(Make({"a", "b"})));
}

} // namespace
} // namespace zarn::object::container
