#include "ObLibX/src/controls/ProgressLayout.h"

#include <algorithm>

namespace ObLibX {
namespace {

constexpr std::int32_t kMarqueeSteps = 26; // for the length of the bar

} // namespace

std::int32_t FilledLength(std::int32_t length, std::int32_t position, std::int32_t highLimit) {
    if (highLimit == 0) return 0;
    const std::int64_t filled = std::int64_t{length} * position / highLimit;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(filled, 0, std::max(length, 0)));
}

Marquee Marquee::Moved(std::int32_t length) const {
    const std::int32_t nextEnd = end + length / kMarqueeSteps;
    const std::int32_t nextStart = nextEnd - length / 2;
    return nextStart > length ? Marquee{} : Marquee{nextStart, nextEnd};
}

PixelRect FilledPart(const PixelRect& bar, bool isVertical, std::int32_t start, std::int32_t end) {
    const std::int32_t length = isVertical ? bar.Height() : bar.Width();
    const std::int32_t from = std::clamp(start, 0, std::max(length, 0));
    const std::int32_t to = std::clamp(end, from, std::max(length, from));
    return isVertical ? PixelRect{bar.left, bar.top + from, bar.right, bar.top + to}
                      : PixelRect{bar.left + from, bar.top, bar.left + to, bar.bottom};
}

} // namespace ObLibX
