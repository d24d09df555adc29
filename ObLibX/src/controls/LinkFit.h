// Where a link is, once its window is as large as its text: plain numbers.
#pragma once

#include <array>
#include <cstdint>

#include "ObLibX/src/controls/TextFit.h"
#include "ObLibX/src/dialog/Geometry.h"

namespace ObLibX {

// At which side of its room a text is that is narrower.
enum class LinkAlignment { Left, Centre, Right };

// The window's rectangle for a text that is as wide as `line` in one line. A text that fits gets a
// window of its width and of the room's height. For a wider one the window is as wide as the room
// and at least as high as width of the text / width of the room + 1 lines. A room without width
// stays. Lengths that are too large end at the largest number.
PixelRect FitLink(const PixelRect& room, const TextSize& line, LinkAlignment alignment);

// The rectangle that shows the focus: two pixels around the window, which shows the text, and below
// it around a text of `textHeight` that is higher. So it is outside the window, and what the window
// paints leaves it alone.
PixelRect LinkFocus(const PixelRect& window, std::int32_t textHeight);

// The four lines of a rectangle, one pixel thick; all empty when the rectangle is.
std::array<PixelRect, 4> EdgesOf(const PixelRect& rect);

} // namespace ObLibX
