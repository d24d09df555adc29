#include "ObLibX/src/controls/ScrollLayout.h"

#include <algorithm>
#include <limits>

namespace ObLibX {
namespace {

constexpr std::int64_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int32_t>::max();

constexpr std::int32_t kSliderPages = 5;
constexpr std::int32_t kSliderSteps = 10;

std::int32_t Fitted(std::int64_t value) {
    return static_cast<std::int32_t>(std::clamp(value, kLowest, kHighest));
}

bool IsVertical(ScrollOrientation orientation) {
    return orientation == ScrollOrientation::Vertical;
}

// From `start` to `end` along the bar, as thick as `across` is.
PixelRect Along(ScrollOrientation orientation, const PixelRect& across, std::int32_t start,
                std::int32_t end) {
    return IsVertical(orientation) ? PixelRect{across.left, start, across.right, end}
                                   : PixelRect{start, across.top, end, across.bottom};
}

std::int32_t LengthOf(ScrollOrientation orientation, PixelPoint size) {
    return std::max(IsVertical(orientation) ? size.y : size.x, 0);
}

PixelRect Whole(PixelPoint size) { return {0, 0, std::max(size.x, 0), std::max(size.y, 0)}; }

// The middle of the client area, `thickness` pixels across.
PixelRect Middle(ScrollOrientation orientation, PixelPoint size, std::int32_t thickness) {
    PixelRect rect = Whole(size);
    if (IsVertical(orientation)) {
        rect.left = (rect.right - std::min(thickness, rect.right)) / 2;
        rect.right = std::min(rect.left + thickness, rect.right);
    } else {
        rect.top = (rect.bottom - std::min(thickness, rect.bottom)) / 2;
        rect.bottom = std::min(rect.top + thickness, rect.bottom);
    }
    return rect;
}

} // namespace

std::int64_t ValueCount(const ScrollRange& range) {
    return std::int64_t{range.maximum} - std::max(range.page, 0) - range.minimum + 1;
}

std::int64_t WholeValueCount(const ScrollRange& range) {
    return std::int64_t{range.maximum} - range.minimum;
}

bool CanScroll(const ScrollRange& range) {
    return range.minimum < std::int64_t{range.maximum} - std::max(range.page - 1, 0);
}

std::int64_t MultiplyDivide(std::int64_t value, std::int64_t numerator, std::int64_t denominator) {
    if (denominator == 0) return -1;
    const std::int64_t product = value * numerator;
    const std::int64_t quotient = product / denominator;
    const std::int64_t rest = product % denominator;
    const std::int64_t size = denominator < 0 ? -denominator : denominator;
    if ((rest < 0 ? -rest : rest) < size - size / 2) return quotient;
    return (product < 0) != (denominator < 0) ? quotient - 1 : quotient + 1;
}

std::int32_t ThumbLength(std::int32_t trackLength, const ScrollRange& range,
                         std::int32_t lengthWithoutPage) {
    std::int64_t length = lengthWithoutPage;
    if (range.page > 0) {
        length = MultiplyDivide(trackLength, range.page, WholeValueCount(range) + 1);
    }
    length = std::max<std::int64_t>(length, kLeastThumbLength);
    return static_cast<std::int32_t>(std::min<std::int64_t>(length, std::max(trackLength, 0)));
}

std::int32_t ThumbTravel(std::int32_t travel, std::int64_t count, std::int32_t minimum,
                         std::int32_t position) {
    const std::int64_t passed = MultiplyDivide(travel, std::int64_t{position} - minimum, count);
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(passed, 0, std::max<std::int32_t>(travel, 0)));
}

std::int32_t ValueAtTravel(std::int32_t pixel, std::int32_t travel, std::int64_t count,
                           std::int32_t minimum, std::int32_t position) {
    if (travel <= 0) return position;
    const std::int32_t inside = std::clamp(pixel, 0, travel);
    const std::int64_t passed = std::max<std::int64_t>(MultiplyDivide(inside, count, travel), 0);
    return Fitted(minimum + passed);
}

ScrollLayout LayOutScrollBar(const ScrollMetrics& metrics, const ScrollRange& range,
                             std::int32_t position) {
    const ScrollOrientation along = metrics.orientation;
    const PixelRect whole = Whole(metrics.size);
    const std::int32_t length = LengthOf(along, metrics.size);
    ScrollLayout layout;
    layout.arrowLength = std::clamp(metrics.arrowLength, 0, length / 2);
    layout.trackLength = length - 2 * layout.arrowLength;
    layout.thumbLength = ThumbLength(layout.trackLength, range, metrics.thumbWithoutPage);
    layout.upArrow = Along(along, whole, 0, layout.arrowLength);
    layout.downArrow = Along(along, whole, length - layout.arrowLength, length);
    layout.track = Along(along, whole, layout.arrowLength, length - layout.arrowLength);
    layout.thumbSpace = layout.track;
    MoveThumb(layout, along,
              layout.arrowLength +
                  ThumbTravel(layout.Travel(), ValueCount(range), range.minimum, position));
    return layout;
}

ScrollLayout LayOutSlider(const SliderMetrics& metrics, const ScrollRange& range,
                          std::int32_t position) {
    ScrollLayout layout;
    layout.trackLength = LengthOf(metrics.orientation, metrics.size);
    layout.thumbLength = std::clamp(metrics.thumbLength, 0, layout.trackLength);
    layout.track = Middle(metrics.orientation, metrics.size, metrics.trackThickness);
    layout.thumbSpace = Whole(metrics.size);
    MoveThumb(layout, metrics.orientation,
              ThumbTravel(layout.Travel(), WholeValueCount(range), range.minimum, position));
    return layout;
}

void MoveThumb(ScrollLayout& layout, ScrollOrientation orientation, std::int32_t thumbOffset) {
    const std::int32_t start = layout.arrowLength;
    const std::int32_t end = start + layout.trackLength;
    layout.thumbOffset = std::clamp(thumbOffset, start, start + layout.Travel());
    const std::int32_t thumbEnd = layout.thumbOffset + layout.thumbLength;
    layout.thumb = Along(orientation, layout.thumbSpace, layout.thumbOffset, thumbEnd);
    layout.pageBefore = Along(orientation, layout.thumbSpace, start, layout.thumbOffset);
    layout.pageAfter = Along(orientation, layout.thumbSpace, thumbEnd, end);
}

std::int32_t ValueFromPixel(const ScrollLayout& layout, std::int32_t pixel, std::int64_t count,
                            std::int32_t minimum, std::int32_t position) {
    return ValueAtTravel(pixel - layout.arrowLength, layout.Travel(), count, minimum, position);
}

ScrollPart HitTest(const ScrollLayout& layout, PixelPoint point) {
    if (layout.upArrow.Contains(point)) return ScrollPart::UpArrow;
    if (layout.downArrow.Contains(point)) return ScrollPart::DownArrow;
    if (layout.thumb.Contains(point)) return ScrollPart::Thumb;
    if (layout.pageBefore.Contains(point)) return ScrollPart::PageBefore;
    if (layout.pageAfter.Contains(point)) return ScrollPart::PageAfter;
    return ScrollPart::None;
}

std::int32_t SliderPage(const ScrollRange& range) {
    return Fitted(WholeValueCount(range) / kSliderPages);
}

std::int32_t SliderStep(const ScrollRange& range) {
    return Fitted(std::max<std::int64_t>(WholeValueCount(range) / kSliderSteps, 1));
}

std::int32_t MovedWithin(const ScrollRange& range, std::int32_t position, std::int64_t distance) {
    const std::int64_t moved = std::min<std::int64_t>(position + distance, range.maximum);
    return Fitted(std::max<std::int64_t>(moved, range.minimum));
}

} // namespace ObLibX
