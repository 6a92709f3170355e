#include <zarn/utilities/name/config.h>

#include <gtest/gtest.h>

#include <utility>

namespace zarn::utilities::name {
namespace {

Config Make() {
    return Config({.manufacturer = "maker",
                   .model = "model",
                   .firmware = "1.2",
                   .hardware = "rev b",
                   .location = "Oslo",
                   .name = "Gr\xc3\xbcn"});
}

void ExpectTexts(Config const& config) {
    EXPECT_EQ(config.GetProductManufacturer(), "maker");
    EXPECT_EQ(config.GetProductModel(), "model");
    EXPECT_EQ(config.GetProductFirmware(), "1.2");
    EXPECT_EQ(config.GetProductHardware(), "rev b");
    EXPECT_EQ(config.GetProductLocation(), "Oslo");
    EXPECT_EQ(config.GetProductName(), "Gr\xc3\xbcn");
}

TEST(Config, ReturnsEachText) { ExpectTexts(Make()); }

TEST(Config, IsEmptyByDefault) {
    Config const config;
    EXPECT_EQ(config.GetProductManufacturer(), "");
    EXPECT_EQ(config.GetProductName(), "");
}

TEST(Config, OutlivesItsOriginal) {
    auto const copy = [] {
        auto const original = Make();
        return Config(original);
    }();
    ExpectTexts(copy);
}

TEST(Config, KeepsItsTextsWhenMovedFrom) {
    auto source = Make();
    auto const target = std::move(source); // NOLINT(performance-move-const-arg): must copy
    ExpectTexts(source);                   // NOLINT(bugprone-use-after-move): intended
    ExpectTexts(target);
}

TEST(Config, MayBeAssigned) {
    Config config;
    config = Make();
    ExpectTexts(config);
}

} // namespace
} // namespace zarn::utilities::name
