#include "host/video/clock_overlay.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zarn::host::video {
namespace {

constexpr std::uint8_t Background = 100;

/// A luma plane with a stride larger than its width.
struct Canvas {
    explicit Canvas(std::size_t width, std::size_t height)
        : samples((width + 3) * height, Background), width(width), height(height) {}

    Plane GetPlane() { return {samples, width + 3, width, height}; }

    /// Rows as text: '#' bright, '.' dark, ' ' unchanged.
    std::string Show(std::size_t row) const {
        std::string text;
        for (std::size_t column = 0; column < width + 3; ++column) {
            auto const sample = samples[row * (width + 3) + column];
            text += sample == Background ? ' ' : sample > Background ? '#' : '.';
        }
        return text;
    }

    std::vector<std::uint8_t> samples;
    std::size_t width;
    std::size_t height;
};

TEST(DrawClock, DrawsDigitsOnADarkBox) {
    Canvas canvas(12, 12);
    DrawClock(canvas.GetPlane(), "1");
    EXPECT_EQ(canvas.Show(0), "               ");
    EXPECT_EQ(canvas.Show(1), " .....         ");
    EXPECT_EQ(canvas.Show(2), " ...#.         ");
    EXPECT_EQ(canvas.Show(5), " ...#.         ");
    EXPECT_EQ(canvas.Show(10), "               ");
}

TEST(DrawClock, DrawsSeparators) {
    Canvas canvas(16, 12);
    DrawClock(canvas.GetPlane(), ":.");
    EXPECT_EQ(canvas.Show(4), " ..#......         ");
    EXPECT_EQ(canvas.Show(6), " ..#......         ");
    EXPECT_EQ(canvas.Show(8), " ......#..         ");
}

TEST(DrawClock, DrawsADifferentPictureForEveryDigit) {
    std::vector<std::vector<std::uint8_t>> pictures;
    for (char digit = '0'; digit <= '9'; ++digit) {
        Canvas canvas(12, 12);
        DrawClock(canvas.GetPlane(), std::string(1, digit));
        for (auto const& other : pictures) EXPECT_NE(canvas.samples, other) << digit;
        pictures.push_back(canvas.samples);
    }
}

TEST(DrawClock, GrowsWithThePicture) {
    Canvas canvas(64, 240);
    DrawClock(canvas.GetPlane(), "1");
    EXPECT_EQ(canvas.Show(4).substr(0, 14), "  ......##..  ");
}

TEST(DrawClock, OmitsCharactersThatDoNotFit) {
    Canvas canvas(6, 4);
    DrawClock(canvas.GetPlane(), "88888");
    for (std::size_t row = 0; row < 4; ++row) EXPECT_EQ(canvas.Show(row).substr(6), "   ");
}

TEST(DrawClock, DrawsNothingOnAPictureTooSmall) {
    Canvas canvas(1, 1);
    DrawClock(canvas.GetPlane(), "12:34");
    EXPECT_EQ(canvas.Show(0), "    ");
}

} // namespace
} // namespace zarn::host::video
