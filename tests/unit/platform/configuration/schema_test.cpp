#include "unit/platform/configuration/tree.h"

namespace zarn::configuration {
namespace {

std::string Json(Schema const& schema) { return boost::json::serialize(schema.ToJson()); }

TEST(SchemaTest, DescribesABoolean) {
    Schema const schema("settings.onvif.enabled", false, "A switch");
    EXPECT_EQ(schema.GetPath(), "settings.onvif.enabled");
    EXPECT_EQ(Json(schema),
              R"({"type":"boolean","default":false,"readOnly":false,"writeOnly":false,"description":"A switch"})");
}

TEST(SchemaTest, NamesTypesAndDefaults) {
    EXPECT_EQ(Schema("a", "text", "").ToJson().at("type"), "string");
    EXPECT_EQ(Schema("a", "text", "").ToJson().at("default"), "text");
    EXPECT_EQ(Schema("a", std::string("text"), "").ToJson().at("type"), "string");
    EXPECT_EQ(Schema("a", std::uint16_t{80}, "").ToJson().at("type"), "integer");
    EXPECT_EQ(Schema("a", std::uint16_t{80}, "").ToJson().at("default"), 80);
    EXPECT_EQ(Schema("a", std::uint32_t{0}, "").ToJson().at("type"), "integer");
    EXPECT_EQ(Schema("a", 0, "").ToJson().at("type"), "integer");
    EXPECT_EQ(Schema("a", std::int64_t{0}, "").ToJson().at("type"), "integer");
    EXPECT_EQ(Schema("a", 0.5, "").ToJson().at("type"), "number");
}

TEST(SchemaTest, NamesItsOptions) {
    using schema::Option;
    auto const readOnly = Schema("a", false, "", Option::ReadOnly).ToJson();
    EXPECT_EQ(readOnly.at("readOnly"), true);
    EXPECT_EQ(readOnly.at("writeOnly"), false);
    auto const both = Schema("a", false, "", schema::Options(Option::WriteOnly) | Option::Optional).ToJson();
    EXPECT_EQ(both.at("readOnly"), false);
    EXPECT_EQ(both.at("writeOnly"), true);
}

TEST(SchemaTest, DescribesACollectionByItsEntry) {
    auto const schema = Schema::Collection("channels", {{"video.width", 1, "A width"}}, "The channels");
    EXPECT_EQ(Json(schema),
              R"({"type":"object","description":"The channels","additionalProperties":{"type":"object","properties":)"
              R"({"video":{"type":"object","properties":{"width":{"type":"integer","default":1,"readOnly":false,)"
              R"("writeOnly":false,"description":"A width"}}}}}})");
}

using SchemaOfTree = Tree;

TEST_F(SchemaOfTree, CombinesTheSchemasOfItsNodes) {
    auto const json = root->GetSchema();
    EXPECT_EQ(json.at("type"), "object");
    EXPECT_EQ(json.at_pointer("/properties/settings/properties/port"), root->Find("settings.port")->GetSchema());
    EXPECT_EQ(json.at_pointer("/properties/channels/additionalProperties/properties/name/type"), "string");
    EXPECT_EQ(json.at_pointer("/properties/settings/properties/port/default"), 80);
}

} // namespace
} // namespace zarn::configuration
