#include "host/video/clock_overlay.h"

#include <algorithm>
#include <array>

namespace zarn::host::video {
namespace {

constexpr std::uint8_t Dark = 16;
constexpr std::uint8_t Bright = 235;

/// A cell is 4 units wide and 8 units high; the digit fills 3 by 7 of them.
constexpr std::size_t CellWidth = 4;
constexpr std::size_t CellHeight = 8;

struct Box {
    std::size_t left, top, width, height;
};

/// The segments a to g of a digit in units of the cell, in the order of the bits below.
constexpr std::array Segments{Box{0, 0, 3, 1}, Box{2, 0, 1, 4}, Box{2, 3, 1, 4}, Box{0, 6, 3, 1},
                              Box{0, 3, 1, 4}, Box{0, 0, 1, 4}, Box{0, 3, 3, 1}};

constexpr std::array<std::uint8_t, 10> Digits{0x3F, 0x06, 0x5B, 0x4F, 0x66, 0x6D, 0x7D, 0x07, 0x7F, 0x6F};

constexpr Box UpperDot{1, 2, 1, 1};
constexpr Box MiddleDot{1, 4, 1, 1};
constexpr Box LowerDot{1, 6, 1, 1};

void Fill(Plane const& plane, Box const& box, std::uint8_t value) {
    auto const right = std::min(box.left + box.width, plane.width);
    auto const bottom = std::min(box.top + box.height, plane.height);
    for (auto row = box.top; row < bottom; ++row) {
        if (box.left < right)
            std::ranges::fill(plane.samples.subspan(row * plane.stride + box.left, right - box.left), value);
    }
}

/// Draws into the cell whose upper left corner is at `left` and `top`, with `unit` pixels per unit.
class Cell {
public:
    Cell(Plane const& plane, std::size_t left, std::size_t top, std::size_t unit)
        : plane(plane), left(left), top(top), unit(unit) {}

    void Draw(char character) const {
        if (character >= '0' && character <= '9') {
            DrawDigit(Digits[static_cast<std::size_t>(character - '0')]);
        } else if (character == ':') {
            Draw(UpperDot);
            Draw(MiddleDot);
        } else if (character == '.') {
            Draw(LowerDot);
        }
    }

private:
    void DrawDigit(std::uint8_t segments) const {
        for (std::size_t index = 0; index < Segments.size(); ++index) {
            if ((segments >> index & 1) != 0) Draw(Segments[index]);
        }
    }

    void Draw(Box const& box) const {
        Fill(plane, {left + box.left * unit, top + box.top * unit, box.width * unit, box.height * unit}, Bright);
    }

    Plane const& plane;
    std::size_t left;
    std::size_t top;
    std::size_t unit;
};

} // namespace

void DrawClock(Plane const& brightness, std::string_view text) {
    auto const unit = std::max<std::size_t>(1, brightness.height / 120);
    Fill(brightness, {unit, unit, (text.size() * CellWidth + 1) * unit, (CellHeight + 1) * unit}, Dark);
    auto left = 2 * unit;
    for (char const character : text) {
        Cell(brightness, left, 2 * unit, unit).Draw(character);
        left += CellWidth * unit;
    }
}

} // namespace zarn::host::video
