#include "ObLibX/src/controls/SpinLayout.h"

namespace ObLibX {
namespace {

constexpr std::int32_t kFrameGap = 2;  // to the frame's right edge
constexpr std::int32_t kButtonGap = 2; // between the buttons
constexpr std::int32_t kArrowMargin = 4;

} // namespace

PixelRect PlaceSpin(const PixelRect& frame, std::int32_t width) {
    const std::int32_t right = frame.right - kFrameGap;
    return {right - width, frame.top, right, frame.bottom};
}

SpinLayout LayOutSpin(const PixelRect& client, std::int32_t border) {
    const PixelRect inner{client.left + border, client.top + border, client.right - border,
                          client.bottom - border};
    if (inner.IsEmpty()) return {};
    const std::int32_t middle = inner.top + inner.Height() / 2;
    return {{inner.left, inner.top, inner.right, middle},
            {inner.left, middle + kButtonGap, inner.right, inner.bottom}};
}

SpinPart HitSpin(const SpinLayout& layout, PixelPoint point) {
    if (layout.up.Contains(point)) return SpinPart::Up;
    return layout.down.Contains(point) ? SpinPart::Down : SpinPart::None;
}

std::int32_t MostSpinArrow(const SpinLayout& layout) {
    return layout.up.Height() - kArrowMargin - 1;
}

} // namespace ObLibX
