#include "ObLibX/src/controls/SwitchLayout.h"

#include "ObLibX/src/controls/ButtonLayout.h"

namespace ObLibX {
namespace {

constexpr std::int32_t kTextShare = 3;  // of the width
constexpr std::int32_t kThumbShare = 4; // of the track's width

PixelRect ThumbAt(const PixelRect& track, std::int32_t left) {
    return {left, track.top, left + track.Width() / kThumbShare, track.bottom};
}

} // namespace

SwitchAreas SwitchAreasOf(const PixelRect& client, std::int32_t inset) {
    const PixelRect inner = Inset(client, inset);
    const std::int32_t border = inner.left + inner.Width() / kTextShare;
    return {{inner.left, inner.top, border, inner.bottom},
            {border, inner.top, inner.right, inner.bottom}};
}

PixelRect RestingThumb(const PixelRect& track, bool isOn) {
    const std::int32_t width = track.Width() / kThumbShare;
    return ThumbAt(track, isOn ? track.right - width : track.left);
}

PixelRect DraggedThumb(const PixelRect& track, std::int32_t mouseX) {
    const std::int32_t width = track.Width() / kThumbShare;
    const std::int32_t last = std::max(track.left, track.right - width);
    return ThumbAt(track, std::clamp(mouseX - width / 2, track.left, last));
}

// Twice the middles, which are halves of pixels for odd widths.
bool IsThumbOn(const PixelRect& track, const PixelRect& thumb) {
    return thumb.left + thumb.right > track.left + track.right;
}

} // namespace ObLibX
