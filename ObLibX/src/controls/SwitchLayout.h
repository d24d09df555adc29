// The parts of a switch: arithmetic that sees no window. All lengths are pixels of the screen.
#pragma once

#include <cstdint>

#include "ObLibX/src/dialog/Geometry.h"

namespace ObLibX {

// The text takes the left third of `client` without `inset` pixels at each edge, the track what is
// left over.
struct SwitchAreas {
    PixelRect text;
    PixelRect track;
};
SwitchAreas SwitchAreasOf(const PixelRect& client, std::int32_t inset);

// The thumb of a switch that isn't dragged: at the right end when on, else at the left one.
PixelRect RestingThumb(const PixelRect& track, bool isOn);
// The thumb whose middle is at the mouse, as far as the track allows.
PixelRect DraggedThumb(const PixelRect& track, std::int32_t mouseX);

// Whether a thumb's middle is right of the track's.
bool IsThumbOn(const PixelRect& track, const PixelRect& thumb);

} // namespace ObLibX
