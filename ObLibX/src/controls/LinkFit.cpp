#include "ObLibX/src/controls/LinkFit.h"

#include <algorithm>

namespace ObLibX {
namespace {

constexpr std::int64_t kLargest = 0x7FFFFFFF;
constexpr std::int32_t kFocusDistance = 2; // pixels, at every scale

// How much of `free` pixels is left of the text.
std::int32_t SpaceBefore(std::int32_t free, LinkAlignment alignment) {
    switch (alignment) {
    case LinkAlignment::Centre:
        return free / 2;
    case LinkAlignment::Right:
        return free;
    default:
        return 0;
    }
}

PixelRect Narrowed(const PixelRect& room, std::int32_t width, LinkAlignment alignment) {
    const std::int32_t left = room.left + SpaceBefore(room.Width() - width, alignment);
    return {left, room.top, left + width, room.bottom};
}

} // namespace

PixelRect FitLink(const PixelRect& room, const TextSize& line, LinkAlignment alignment) {
    const std::int32_t width = room.Width();
    if (width <= 0) return room;
    if (line.width <= width) return Narrowed(room, std::max(line.width, 0), alignment);
    const std::int64_t lines = std::int64_t{line.width} / width + 1;
    const std::int64_t bottom = room.top + lines * line.height;
    PixelRect grown = room;
    grown.bottom = std::max(room.bottom, static_cast<std::int32_t>(std::min(bottom, kLargest)));
    return grown;
}

PixelRect LinkFocus(const PixelRect& window, std::int32_t textHeight) {
    return {window.left - kFocusDistance, window.top - kFocusDistance,
            window.right + kFocusDistance,
            std::max(window.top + textHeight, window.bottom) + kFocusDistance};
}

std::array<PixelRect, 4> EdgesOf(const PixelRect& rect) {
    if (rect.IsEmpty()) return {};
    return {{{rect.left, rect.top, rect.right, rect.top + 1},
             {rect.left, rect.bottom - 1, rect.right, rect.bottom},
             {rect.left, rect.top, rect.left + 1, rect.bottom},
             {rect.right - 1, rect.top, rect.right, rect.bottom}}};
}

} // namespace ObLibX
