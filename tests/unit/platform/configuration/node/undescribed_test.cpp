#include "unit/platform/configuration/tree.h"

#include <zarn/configuration/node/undescribed.h>

namespace zarn::configuration {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNull;

class UndescribedTest : public Tree {
protected:
    void ReadAndKeep(std::string const& json) { root->FromJson(boost::json::parse(json), Unknown::Keep); }
};

TEST_F(UndescribedTest, IsKeptAndWrittenBackInItsPlace) {
    std::string const json = R"({"extra":{"deep":[1]},"name":"n","settings":{"later":true,)"
                             R"("enabled":false,"port":80,"secret":""},"channels":{"1":{"odd":null,"name":""}}})";
    ReadAndKeep(json);
    EXPECT_EQ(Write(*root), json);
    EXPECT_THAT(root->GetUndescribed(), ElementsAre("extra", "settings.later", "channels.1.odd"));
    EXPECT_TRUE(root->Find("extra")->Is<node::Undescribed>());
    EXPECT_THAT(root->Find("extra.deep"), IsNull());
    EXPECT_TRUE(root->Find("extra")->IsStated());
}

TEST_F(UndescribedTest, IsAbsentFromTheEffectiveLayer) {
    ReadAndKeep(R"({"extra": 1})");
    EXPECT_FALSE(root->ToJson(Layer::Effective).as_object().contains("extra"));
}

TEST_F(UndescribedTest, IsAdoptedWhenItIsDescribed) {
    ReadAndKeep(R"({"extra": {"onvif": {"enabled": true, "more": 1}}, "name": "n"})");
    root->Schema({{"extra.onvif.enabled", false, ""}, {"extra.onvif.port", std::uint16_t{1}, ""}});
    EXPECT_TRUE(At<Bool>("extra.onvif.enabled").Get());
    EXPECT_EQ(At<UInt16>("extra.onvif.port").Get(), 1);
    EXPECT_THAT(root->GetUndescribed(), ElementsAre("extra.onvif.more"));
    EXPECT_EQ(Keys(*root).front(), "extra");
    EXPECT_EQ(Write(At<node::Map>("extra")), R"({"onvif":{"enabled":true,"more":1,"port":1}})");
}

TEST_F(UndescribedTest, IsAdoptedByACollection) {
    ReadAndKeep(R"({"zones": {"b": {"x": 2}, "a": {"x": 1, "y": 3}}})");
    root->Schema({Schema::Collection("zones", {{"x", std::int32_t{0}, ""}}, "")});
    EXPECT_THAT(Keys(At<node::Dynamic>("zones")), ElementsAre("b", "a"));
    EXPECT_EQ(At<node::Primitive<std::int32_t>>("zones.a.x").Get(), 1);
    EXPECT_EQ(root->Find("zones.a")->GetPath(), "zones.a");
    EXPECT_THAT(root->GetUndescribed(), ElementsAre("zones.a.y"));
}

TEST_F(UndescribedTest, IsTypeCheckedWhenItIsDescribed) {
    ReadAndKeep(R"({"settings": {"later": "yes"}, "extra": 5})");
    EXPECT_EQ(ErrorOf([&] {
                  root->Schema({{"settings.later", false, ""}});
              }),
              "settings.later: \"yes\" is not true or false");
    EXPECT_EQ(ErrorOf([&] { root->Schema({{"extra.member", false, ""}}); }), "extra: 5 is not an object");
    EXPECT_THAT(root->GetUndescribed(), ElementsAre("settings.later", "extra"));
}

TEST_F(UndescribedTest, IsReplacedOrDroppedByTheNextRead) {
    ReadAndKeep(R"({"one": 1, "two": 2})");
    ReadAndKeep(R"({"one": [3]})");
    EXPECT_THAT(root->GetUndescribed(), ElementsAre("one"));
    EXPECT_EQ(Write(*root->Find("one")), "[3]");
    Read("{}");
    EXPECT_THAT(root->GetUndescribed(), IsEmpty());
}

} // namespace
} // namespace zarn::configuration
