#include "ObLibX/src/dialog/WindowPlacement.h"

namespace ObLibX {
namespace {

constexpr std::int32_t kCursorMargin = 10; // pixels to the edge of the work area

// Where the window goes once the monitor is known.
struct Target {
    PixelRect area; // the monitor's work area
    PixelPoint point;
    bool isCorner = false; // the point is the window's top left corner, not its centre
};

PixelRect CentredOn(PixelPoint centre, std::int32_t width, std::int32_t height) {
    const std::int32_t left = centre.x - width / 2;
    const std::int32_t top = centre.y - height / 2;
    return {left, top, left + width, top + height};
}

PixelPoint TopLeft(const PixelRect& rect) { return {rect.left, rect.top}; }

// `value` moved into a range; its beginning wins where the range is too small.
std::int32_t Moved(std::int32_t value, std::int32_t least, std::int32_t most) {
    return std::max(std::min(value, most), least);
}

PixelPoint AtCursor(const PlacementRequest& request, const PixelRect& area) {
    return {Moved(request.cursor.x, area.left + kCursorMargin,
                  area.right - kCursorMargin - request.width),
            Moved(request.cursor.y, area.top + kCursorMargin,
                  area.bottom - kCursorMargin - request.height)};
}

// The cursor decides while it is in the reference and the caller gave no size.
std::optional<Target> TargetOf(const PlacementRequest& request, const PlacementScreen& screen) {
    const PixelRect& reference = *request.reference;
    const bool isByCursor = reference.Contains(request.cursor) && !request.isSizeGiven;
    const PixelPoint point = isByCursor ? request.cursor : reference.Centre();
    if (const auto area = screen.workAreaAt(point)) return Target{*area, point};
    const PixelPoint corner{reference.left + 1, reference.top + 1};
    if (const auto area = screen.workAreaAt(corner)) return Target{*area, corner, true};
    return {};
}

PixelPoint OnTarget(const PlacementRequest& request, const Target& target) {
    const PixelRect from{target.point.x, target.point.y, target.point.x + request.width,
                         target.point.y + request.height};
    PixelRect place =
        target.isCorner ? from : CentredOn(target.point, request.width, request.height);
    if (!target.area.Contains(place)) place = target.area;
    return TopLeft(CentredOn(place.Centre(), request.width, request.height));
}

PixelPoint Simple(const PlacementRequest& request, const PixelRect& workArea) {
    const PixelRect place =
        CentredOn(request.reference.value_or(workArea).Centre(), request.width, request.height);
    return {Moved(place.left, workArea.left, workArea.right - request.width),
            Moved(place.top, workArea.top, workArea.bottom - request.height)};
}

} // namespace

PixelPoint PlaceWindow(const PlacementRequest& request, const PlacementScreen& screen) {
    if (request.isAtCursor) {
        if (const auto area = screen.workAreaAt(request.cursor)) return AtCursor(request, *area);
    }
    const auto target = request.reference ? TargetOf(request, screen) : std::nullopt;
    return target ? OnTarget(request, *target) : Simple(request, screen.workArea);
}

} // namespace ObLibX
