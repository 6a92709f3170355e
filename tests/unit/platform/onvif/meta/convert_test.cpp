#include "support/failing_nothrow_new.h"
#include "unit/interface/exchange.h"

#include <zarn/meta/data/sample_meta.h>
#include <zarn/onvif/meta/convert.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <soapH.h>

#include <array>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace zarn::onvif::meta {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNull;
using testing::Pair;
using testing::Pointee;
using testing::SizeIs;
using zarn::meta::Box;
using zarn::meta::Meta;
using zarn::meta::Point;
using zarn::meta::TrackedObject;
using zarn::meta::data::classification::Confidence;

constexpr std::chrono::sys_seconds Epoch;

/// An object that fills the picture and has no other known properties.
TrackedObject Unknown() {
    return {.number = 1, .boundingBox = {{0, 0}, {1, 1}}, .centerOfGravity = {0.5, 0.5}, .classes = {}, .color = {}};
}

class ConvertMeta : public testing::Test {
protected:
    tt__Appearance& Appearance(TrackedObject const& object) {
        return *Convert(context.get(), Meta(Epoch, {object}))->Object.at(0)->Appearance;
    }

    /// In the order left, top, right, bottom.
    std::array<float, 4> Rectangle(Box const& box) {
        auto object = Unknown();
        object.boundingBox = box;
        auto const& made = *Appearance(object).Shape->BoundingBox;
        return {*made.left, *made.top, *made.right, *made.bottom};
    }

    std::pair<float, float> Vector(Point const& point) {
        auto object = Unknown();
        object.centerOfGravity = point;
        auto const& made = *Appearance(object).Shape->CenterOfGravity;
        return {*made.x, *made.y};
    }

    std::vector<std::pair<std::string, float>> Classes(std::vector<Confidence> classes) {
        auto object = Unknown();
        object.classes = std::move(classes);
        std::vector<std::pair<std::string, float>> made;
        for (auto const* type : Appearance(object).Class->Type) made.emplace_back(type->__item, *type->Likelihood);
        return made;
    }

    bindings::Context const context = bindings::MakeContext();
};

TEST_F(ConvertMeta, MapsThePictureToMinusOneToOneWithYUpwards) {
    EXPECT_THAT(Rectangle({{0, 0}, {1, 1}}), ElementsAre(-1, 1, 1, -1));
    EXPECT_THAT(Rectangle({{0.25, 0.125}, {0.75, 0.5}}), ElementsAre(-0.5, 0.75, 0.5, 0));
}

TEST_F(ConvertMeta, RoundsPlacesToTheNearestFloat) {
    EXPECT_THAT(Vector({0.1, 0.1}), Pair(-0.8F, 0.8F));
    EXPECT_THAT(Rectangle({{0.1, 0.3}, {0.7, 0.9}}), ElementsAre(-0.8F, 0.4F, 0.4F, -0.8F));
}

TEST_F(ConvertMeta, MapsCornersAndCentreExactly) {
    EXPECT_THAT(Vector({0, 0}), Pair(-1, 1));
    EXPECT_THAT(Vector({1, 0}), Pair(1, 1));
    EXPECT_THAT(Vector({0, 1}), Pair(-1, -1));
    EXPECT_THAT(Vector({1, 1}), Pair(1, -1));
    auto const [x, y] = Vector({0.5, 0.5});
    EXPECT_EQ(x, 0);
    EXPECT_EQ(y, 0);
    EXPECT_FALSE(std::signbit(x) || std::signbit(y)); // a negative zero would be written as "-0"
}

TEST_F(ConvertMeta, ClampsCoordinatesOutsideThePicture) {
    EXPECT_THAT(Rectangle({{-0.5, -2}, {0.5, 1.5}}), ElementsAre(-1, 1, 0, -1));
    EXPECT_THAT(Rectangle({{1.5, 2}, {1e308, 1e308}}), ElementsAre(1, -1, 1, -1));
    EXPECT_THAT(Vector({-1e308, 1.0001}), Pair(-1, -1));
}

TEST_F(ConvertMeta, KeepsTheTime) {
    auto const time = Epoch + 1'700'000'000s;
    EXPECT_EQ(Convert(context.get(), Meta(time, {}))->UtcTime, 1'700'000'000);
}

TEST_F(ConvertMeta, KeepsTheObjectsInTheirOrderWithTheirNumbers) {
    auto first = Unknown();
    first.number = 4294967295U;
    auto const* frame = Convert(context.get(), Meta(Epoch, {first, Unknown()}));
    ASSERT_THAT(frame->Object, SizeIs(2));
    EXPECT_EQ(*frame->Object[0]->ObjectId, "4294967295");
    EXPECT_EQ(*frame->Object[1]->ObjectId, "1");
    EXPECT_THAT(Convert(context.get(), Meta(Epoch, {}))->Object, IsEmpty());
}

TEST_F(ConvertMeta, MapsClassesToOnvifNames) {
    EXPECT_THAT(Classes({Confidence("person", 0.75), Confidence("human", 0), Confidence("face", 1)}),
                ElementsAre(Pair("Human", 0.75F), Pair("Human", 0), Pair("HumanFace", 1)));
    EXPECT_THAT(Classes({Confidence("animal"), Confidence("bicycle"), Confidence("bike"), Confidence("vehicle"),
                         Confidence("license_plate")}),
                ElementsAre(Pair("Animal", 1), Pair("Bicycle", 1), Pair("Bike", 1), Pair("Vehicle", 1),
                            Pair("LicensePlate", 1)));
}

TEST_F(ConvertMeta, KeepsTheNamesOfOtherClasses) {
    EXPECT_THAT(Classes({Confidence("Gabelstapler <Süd>", 0.5), Confidence("Person"), Confidence("")}),
                ElementsAre(Pair("Gabelstapler <Süd>", 0.5F), Pair("Person", 1), Pair("", 1)));
}

TEST_F(ConvertMeta, OmitsUnknownClassAndColour) {
    auto const& appearance = Appearance(Unknown());
    EXPECT_THAT(appearance.Class, IsNull());
    EXPECT_THAT(appearance.Color, IsNull());
}

TEST_F(ConvertMeta, WritesTheColourAsRgb) {
    auto object = Unknown();
    object.color = zarn::meta::Color{.red = 255, .green = 1, .blue = 0};
    auto const& clusters = Appearance(object).Color->ColorCluster;
    ASSERT_THAT(clusters, SizeIs(1));
    EXPECT_EQ(clusters[0].Color->X, 255);
    EXPECT_EQ(clusters[0].Color->Y, 1);
    EXPECT_EQ(clusters[0].Color->Z, 0);
    EXPECT_THAT(clusters[0].Color->Colorspace, Pointee(std::string("http://www.onvif.org/ver10/colorspace/RGB")));
}

TEST_F(ConvertMeta, WritesTheWholeSample) {
    auto const* frame = Convert(context.get(), zarn::meta::data::GetSampleMeta());
    EXPECT_EQ(bindings::WithoutNamespaces(bindings::Write(context.get(), *frame, "tt:Frame")),
              R"(<tt:Frame UtcTime="2026-01-31T12:00:00Z">)"
              R"(<tt:Object ObjectId="12"><tt:Appearance><tt:Shape>)"
              R"(<tt:BoundingBox bottom="-0.5" top="0.5" right="-0.5" left="-0.75"></tt:BoundingBox>)"
              R"(<tt:CenterOfGravity x="-0.625" y="0.0625"></tt:CenterOfGravity></tt:Shape>)"
              R"(<tt:Class><tt:Type Likelihood="0.875">Human</tt:Type></tt:Class></tt:Appearance></tt:Object>)"
              R"(<tt:Object ObjectId="13"><tt:Appearance><tt:Shape>)"
              R"(<tt:BoundingBox bottom="-0.25" top="0.25" right="0.75" left="0"></tt:BoundingBox>)"
              R"(<tt:CenterOfGravity x="0.375" y="-0.0625"></tt:CenterOfGravity></tt:Shape>)"
              R"(<tt:Color><tt:ColorCluster>)"
              R"(<tt:Color X="192" Y="32" Z="16" Colorspace="http://www.onvif.org/ver10/colorspace/RGB"></tt:Color>)"
              R"(</tt:ColorCluster></tt:Color>)"
              R"(<tt:Class><tt:Type Likelihood="0.75">Vehicle</tt:Type>)"
              R"(<tt:Type Likelihood="0.125">Bicycle</tt:Type></tt:Class></tt:Appearance></tt:Object></tt:Frame>)");
}

TEST_F(ConvertMeta, OmitsMembersWithoutMemory) {
    auto const sample = zarn::meta::data::GetSampleMeta();
    {
        test::FailingNothrowNew const failing(0);
        EXPECT_THAT(Convert(context.get(), sample), IsNull());
    }
    bool failed = true;
    for (int n = 1; failed; ++n) {
        test::FailingNothrowNew failing(n, 1);
        auto const* frame = Convert(context.get(), sample);
        failed = failing.HasFailed();
        ASSERT_NE(frame, nullptr);
        for (auto const* object : frame->Object) ASSERT_NE(object, nullptr) << n;
        EXPECT_TRUE(bindings::Write(context.get(), *frame, "tt:Frame").ends_with("</tt:Frame>")) << n;
    }
    EXPECT_THAT(Convert(context.get(), sample)->Object, SizeIs(2));
}

TEST_F(ConvertMeta, OmitsAColourWithoutItsColourSpace) {
    auto object = Unknown();
    object.color = zarn::meta::Color{.red = 1, .green = 2, .blue = 3};
    Meta const frame(Epoch, {object});
    bool failed = true;
    for (int n = 1; failed; ++n) {
        test::FailingNothrowNew const failing(n, 1);
        auto const* made = Convert(context.get(), frame);
        failed = failing.HasFailed();
        if (made->Object.empty() || !made->Object[0]->Appearance || !made->Object[0]->Appearance->Color) continue;
        for (auto const& cluster : made->Object[0]->Appearance->Color->ColorCluster) {
            ASSERT_NE(cluster.Color, nullptr) << n;
            EXPECT_NE(cluster.Color->Colorspace, nullptr) << n;
        }
    }
}

} // namespace
} // namespace zarn::onvif::meta
