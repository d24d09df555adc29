#include "ObLibX/src/controls/EditLayout.h"

namespace ObLibX {
namespace {

PixelRect Grown(const PixelRect& rect, std::int32_t by) {
    return {rect.left - by, rect.top - by, rect.right + by, rect.bottom + by};
}

} // namespace

PixelRect OfHeight(const PixelRect& rect, std::int32_t height) {
    const std::int32_t top = rect.top + (rect.Height() - height) / 2;
    return {rect.left, top, rect.right, top + height};
}

EditPlaces PlaceEdit(const PixelRect& window, const EditMeasures& measures) {
    EditPlaces places;
    const std::int32_t frameWidth = measures.frameWidth;
    const std::int32_t textHeight = measures.textHeight;
    places.minimumHeight = std::max(window.Height(), textHeight) + 2 * frameWidth + 1;
    const std::int32_t height = measures.isMultiLine ? window.Height() : textHeight + 1;
    places.frameRectangle = Grown(window, frameWidth);
    // A window that the text has no room in: the frame is as tall as it needs.
    if (height + 2 * frameWidth > places.frameRectangle.Height()) {
        places.frameRectangle = OfHeight(places.frameRectangle, places.minimumHeight);
    }
    places.eyeWidth = measures.hasEye ? places.frameRectangle.Height() : 0;
    places.editRectangle = OfHeight(Grown(places.frameRectangle, -frameWidth), height);
    places.editRectangle.right =
        std::max(places.editRectangle.left, places.editRectangle.right - places.eyeWidth);
    return places;
}

PixelRect FrameAround(const PixelRect& edit, std::int32_t frameWidth, std::int32_t minimumHeight,
                      std::int32_t eyeWidth) {
    PixelRect frame = Grown(edit, frameWidth);
    frame.right += eyeWidth;
    return frame.Height() < minimumHeight ? OfHeight(frame, minimumHeight) : frame;
}

PixelRect EyeIn(const PixelRect& frame, std::int32_t frameWidth, std::int32_t eyeWidth) {
    const PixelRect inside = Grown(frame, -frameWidth);
    return {inside.right - eyeWidth, inside.top, inside.right, inside.bottom};
}

} // namespace ObLibX
