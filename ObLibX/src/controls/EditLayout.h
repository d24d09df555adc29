// Where a flat edit, its frame and the eye of a password are.
#pragma once

#include <cstdint>

#include "ObLibX/src/dialog/Geometry.h"

namespace ObLibX {

// What a place is worked out from. All in pixels.
struct EditMeasures {
    std::int32_t textHeight = 0; // of one line
    std::int32_t frameWidth = 0;
    bool isMultiLine = false; // the edit keeps its height
    bool hasEye = false;
};

// Rectangles are in the coordinates of the parent.
struct EditPlaces {
    PixelRect editRectangle;
    PixelRect frameRectangle;
    std::int32_t minimumHeight = 0; // of the frame, once the edit is moved
    std::int32_t eyeWidth = 0;      // 0 without an eye
};

// A rectangle of another height around the same middle.
PixelRect OfHeight(const PixelRect& rect, std::int32_t height);

// For an edit that the template put at `window`.
EditPlaces PlaceEdit(const PixelRect& window, const EditMeasures& measures);

// The frame of an edit that is at `edit` now: as tall as it was made for, or taller. The eye is
// inside it, at the right of the edit.
PixelRect FrameAround(const PixelRect& edit, std::int32_t frameWidth, std::int32_t minimumHeight,
                      std::int32_t eyeWidth);

// The eye: at the right end of the frame, inside it.
PixelRect EyeIn(const PixelRect& frame, std::int32_t frameWidth, std::int32_t eyeWidth);

} // namespace ObLibX
