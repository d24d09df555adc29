// Where a button's text and image are: arithmetic that sees no window. All lengths are pixels of
// the screen.
#pragma once

#include <cstdint>

#include "ObLibX/src/dialog/Geometry.h"

namespace ObLibX {

// Bits of a button window's style.
inline constexpr std::uint32_t kButtonLeft = 0x100;
inline constexpr std::uint32_t kButtonRight = 0x200;
inline constexpr std::uint32_t kButtonTop = 0x400;
inline constexpr std::uint32_t kButtonBottom = 0x800;

// The numbers are those of the flags for drawing text.
enum class HorizontalPlace : std::int32_t { Left = 0, Centre = 1, Right = 2 };
enum class VerticalPlace : std::int32_t { Top = 0, Centre = 4, Bottom = 8 };

// What a window's style asks for; both bits of a direction mean its centre, none `otherwise`.
HorizontalPlace HorizontalOf(std::uint32_t style, HorizontalPlace otherwise);
VerticalPlace VerticalOf(std::uint32_t style, VerticalPlace otherwise);

struct PixelSize {
    std::int32_t width = 0;
    std::int32_t height = 0;
    [[nodiscard]] bool IsEmpty() const { return width <= 0 || height <= 0; }
    bool operator==(const PixelSize&) const = default;
};

// How a control arranges text and image; the fields of ObCustomControl and ObFlatBtn of these
// names.
struct ButtonArrangement {
    std::int32_t imageBesideText = 0; // 1: the text is below the image
    std::int32_t imageSide = 0;       // 0: left, 1: right, 2: centred
    bool imageGap = true;
    bool imageOnly = false;
};

struct ButtonContents {
    PixelSize image;        // empty: none
    std::int32_t spare = 0; // width beside the image that the text doesn't get
    std::int32_t padding = 0;
    bool hasText = false;
};

// The part of the client area that the text is placed in, and that of the image. They overlap
// where only one of the two is shown.
struct ButtonAreas {
    PixelRect layout;
    PixelRect image;
};
ButtonAreas AreasOf(const PixelRect& client, const ButtonArrangement& arrangement,
                    const ButtonContents& contents);

// `area` without `by` pixels at each edge.
PixelRect Inset(const PixelRect& area, std::int32_t by);

// A text of the measured size inside `area`. Wider than that, it begins at the left edge and ends
// at the right one; higher, it extends past the edges that it isn't aligned to.
PixelRect PlaceText(const PixelRect& area, PixelSize text, HorizontalPlace horizontal,
                    VerticalPlace vertical);

// The top left corner of the image in its area.
PixelPoint PlaceImage(const PixelRect& area, const ButtonArrangement& arrangement,
                      const ButtonContents& contents, VerticalPlace vertical);

// The middle of an area for something of this size.
PixelRect Centred(const PixelRect& area, PixelSize size);

// In high contrast a check box or radio is drawn instead of shown by an image: lines so thick, and
// the rectangle of the sign inside the box.
std::int32_t ContrastLine(std::int32_t width);
PixelRect ContrastSign(const PixelRect& box);

} // namespace ObLibX
