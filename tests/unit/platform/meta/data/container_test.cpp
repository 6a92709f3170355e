#include <zarn/meta/data/channel.h>
#include <zarn/meta/data/container.h>
#include <zarn/meta/data/object.h>
#include <zarn/meta/data/zone.h>

#include <gmock/gmock.h>

#include <stdexcept>

namespace zarn::meta::data {
namespace {

std::vector<std::uint32_t> ChannelsOf(Container const& container) {
    std::vector<std::uint32_t> ids;
    for (Channel const& channel : container.OfType<Channel>()) ids.push_back(channel.GetId());
    return ids;
}

TEST(MetaContainer, IsEmptyAtFirst) {
    Container const container;
    EXPECT_EQ(container.GetCount(), 0U);
    EXPECT_TRUE(container.OfType<Channel>().empty());
    EXPECT_EQ(container.First<object::Object>(), nullptr);
}

TEST(MetaContainer, IsIteratedByType) {
    Container container;
    container.Emplace<Channel>(7U);
    container.Emplace<Zone>(Zone::Line);
    container.Emplace<Channel>(2U);
    EXPECT_THAT(ChannelsOf(container), testing::ElementsAre(7, 2));
    EXPECT_EQ(container.GetCount(), 3U);
}

/// A tracked type other than Object.
class Shadow : public object::Typed<Shadow, ObjectBase> {
public:
    static constexpr char const* TypeName = "test.Shadow";

    explicit Shadow(std::uint32_t number) noexcept : Typed(number) {}
};

TEST(MetaContainer, GivesAnObjectByItsTypeAndItsBasesAlone) {
    Container container;
    container.Emplace<Shadow>(3U);
    auto const& person = container.Emplace<Object>(4U);
    EXPECT_EQ(container.First<Object>(), &person);
    EXPECT_EQ(container.First<ObjectBase>()->GetId(), 3U);
}

TEST(MetaContainer, ReturnsTheFirstOfAType) {
    Container container;
    container.Emplace<Zone>(Zone::Field);
    auto const& first = container.Emplace<Channel>(7U);
    container.Emplace<Channel>(2U);
    EXPECT_EQ(container.First<Channel>(), &first);
}

TEST(MetaContainer, SharesItsObjects) {
    auto const channel = std::make_shared<Channel>(5U);
    Container one;
    Container other;
    one.Add(channel);
    other.Add(channel);
    EXPECT_EQ(one.First<Channel>(), other.First<Channel>());
    EXPECT_EQ(channel.use_count(), 3);
}

TEST(MetaContainer, HoldsContainers) {
    Container outer;
    outer.Emplace<Container>().Emplace<Channel>(1U);
    EXPECT_EQ(outer.First<Channel>(), nullptr);
    EXPECT_THAT(ChannelsOf(*outer.First<Container>()), testing::ElementsAre(1));
}

TEST(MetaContainer, RefusesANullObject) {
    Container container;
    EXPECT_THROW(container.Add(nullptr), std::invalid_argument);
    EXPECT_EQ(container.GetCount(), 0U);
}

TEST(MetaContainer, HasItsTypeName) { EXPECT_STREQ(Container().GetTypeName(), "zarn.meta.data.Container"); }

} // namespace
} // namespace zarn::meta::data
