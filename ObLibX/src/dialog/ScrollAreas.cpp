#include "ObLibX/src/dialog/ScrollAreas.h"

#include <algorithm>

namespace ObLibX {
namespace {

std::optional<std::int64_t> Wanted(const ScrollExtent& extent, ScrollCode code,
                                   const ScrollBarState& bar) {
    switch (code) {
    case ScrollCode::LineUp:
        return bar.position - 1;
    case ScrollCode::LineDown:
        return bar.position + 1;
    case ScrollCode::PageUp:
        return bar.position - bar.page;
    case ScrollCode::PageDown:
        return bar.position + bar.page;
    case ScrollCode::ThumbPosition:
    case ScrollCode::ThumbTrack:
        return bar.track;
    case ScrollCode::Top:
        return 0;
    case ScrollCode::Bottom:
        return LastScrollPosition(extent);
    }
    return {};
}

} // namespace

std::int64_t LastScrollPosition(const ScrollExtent& extent) {
    return std::max<std::int64_t>(extent.total - extent.page, 0);
}

std::int64_t ClampScrollPosition(const ScrollExtent& extent, std::int64_t position) {
    return std::clamp<std::int64_t>(position, 0, LastScrollPosition(extent));
}

std::int64_t WheelScrollPosition(const ScrollExtent& extent, std::int64_t position, int delta) {
    return ClampScrollPosition(extent, delta < 0 ? position + 1 : position - 1);
}

std::optional<std::int64_t> BarScrollPosition(const ScrollExtent& extent, std::uint16_t code,
                                              const ScrollBarState& bar) {
    const auto wanted = Wanted(extent, static_cast<ScrollCode>(code), bar);
    if (!wanted) return {};
    return ClampScrollPosition(extent, *wanted);
}

std::optional<std::int64_t> PanScrollPosition(const ScrollExtent& extent, std::int64_t position,
                                              std::int32_t startY, std::int32_t currentY,
                                              std::int32_t unitPixels) {
    const std::int64_t delta = std::int64_t{currentY} - startY;
    if (unitPixels <= 0 || (delta < 0 ? -delta : delta) < unitPixels) return {};
    return ClampScrollPosition(extent, position - delta / unitPixels);
}

bool ScrollGuard::BeginWheel() {
    if (isUp_) return false;
    isUp_ = true;
    return true;
}

bool ScrollGuard::Begin(const PendingScroll& scroll) {
    pending_ = scroll;
    if (isRunning_) return false;
    isUp_ = true;
    isRunning_ = true;
    return true;
}

std::optional<PendingScroll> ScrollGuard::TakePending() {
    if (pending_ == taken_) return {};
    taken_ = pending_;
    return taken_;
}

void ScrollGuard::End() { *this = ScrollGuard(); }

void ScrollGuard::Forget(const void* area) {
    if (pending_ && pending_->area == area) pending_ = taken_;
    if (!taken_ || taken_->area != area) return;
    if (pending_ == taken_) pending_.reset();
    taken_.reset();
}

} // namespace ObLibX
