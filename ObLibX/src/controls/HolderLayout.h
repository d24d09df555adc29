// Where the holders of a window's scroll bars are, and what of its client area is theirs while they
// are hidden: plain numbers, no window.
#pragma once

#include <cstdint>

#include "ObLibX/src/dialog/Geometry.h"

namespace ObLibX {

// A window with scroll bars of its own. All rectangles have the coordinates of `window`.
struct HostFrame {
    PixelRect window;            // with its border
    PixelPoint border;           // thickness at the left and right, and at the top and bottom
    bool hasVertical = false;    // the window has this bar now
    bool hasHorizontal = false;  // and this one
    bool isVerticalLeft = false; // the vertical bar is at the left edge
    std::int32_t verticalWidth = 0;
    std::int32_t horizontalHeight = 0;
};

// Empty rectangles where the window has no bar, or no room.
struct HolderPlaces {
    PixelRect vertical;
    PixelRect horizontal;
    PixelRect corner; // between two bars
};

// Over the window's own bars, inside its border.
HolderPlaces PlaceHolders(const HostFrame& frame);

// While the bars are hidden, a strip of this many pixels takes the place of each.
std::int32_t StripThickness(std::int32_t dpi);
HolderPlaces PlaceStrips(const HostFrame& frame, std::int32_t thickness);

// The client area beside the strips. `client`: the one that the system leaves beside the bars.
PixelRect ClientBesideStrips(const HostFrame& frame, const PixelRect& client,
                             std::int32_t thickness);

// Whether `to` is outside of the rectangle of this size around `from`.
bool HasLeftHover(PixelPoint from, PixelPoint to, PixelPoint size);

} // namespace ObLibX
