#include "ObLibX/src/controls/HolderLayout.h"

#include <cstdlib>

#include "ObLibX/src/controls/ScrollLayout.h"

namespace ObLibX {
namespace {

constexpr std::int32_t kStripThickness = 4; // at 96 dpi
constexpr std::int32_t kUnscaledDpi = 96;

PixelRect WithoutBorder(const HostFrame& frame) {
    return {frame.window.left + frame.border.x, frame.window.top + frame.border.y,
            frame.window.right - frame.border.x, frame.window.bottom - frame.border.y};
}

PixelRect OrEmpty(const PixelRect& rect) { return rect.IsEmpty() ? PixelRect{} : rect; }

} // namespace

HolderPlaces PlaceHolders(const HostFrame& frame) {
    const PixelRect inner = WithoutBorder(frame);
    const std::int32_t width =
        frame.hasVertical ? std::clamp(frame.verticalWidth, 0, std::max(inner.Width(), 0)) : 0;
    const std::int32_t height =
        frame.hasHorizontal ? std::clamp(frame.horizontalHeight, 0, std::max(inner.Height(), 0))
                            : 0;
    // From where to where the vertical bar is, and from where to where the horizontal one.
    const std::int32_t left = frame.isVerticalLeft ? inner.left : inner.right - width;
    const std::int32_t start = frame.isVerticalLeft ? inner.left + width : inner.left;
    const std::int32_t end = frame.isVerticalLeft ? inner.right : inner.right - width;
    const std::int32_t top = inner.bottom - height;
    HolderPlaces places;
    places.vertical = OrEmpty({left, inner.top, left + width, top});
    places.horizontal = OrEmpty({start, top, end, inner.bottom});
    places.corner = OrEmpty({left, top, left + width, inner.bottom});
    return places;
}

std::int32_t StripThickness(std::int32_t dpi) {
    return static_cast<std::int32_t>(MultiplyDivide(kStripThickness, dpi, kUnscaledDpi));
}

HolderPlaces PlaceStrips(const HostFrame& frame, std::int32_t thickness) {
    HostFrame strips = frame;
    strips.verticalWidth = thickness;
    strips.horizontalHeight = thickness;
    return PlaceHolders(strips);
}

PixelRect ClientBesideStrips(const HostFrame& frame, const PixelRect& client,
                             std::int32_t thickness) {
    const PixelRect inner = WithoutBorder(frame);
    PixelRect beside = client;
    if (frame.hasVertical && frame.isVerticalLeft) {
        beside.left = std::min(inner.left + thickness, beside.right);
    } else if (frame.hasVertical) {
        beside.right = std::max(inner.right - thickness, beside.left);
    }
    if (frame.hasHorizontal) beside.bottom = std::max(inner.bottom - thickness, beside.top);
    return beside;
}

bool HasLeftHover(PixelPoint from, PixelPoint to, PixelPoint size) {
    const auto isBeyond = [](std::int64_t distance, std::int64_t length) {
        return 2 * std::abs(distance) > length;
    };
    return isBeyond(std::int64_t{to.x} - from.x, size.x) ||
           isBeyond(std::int64_t{to.y} - from.y, size.y);
}

} // namespace ObLibX
