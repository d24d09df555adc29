#include "ObLibX/src/controls/ObCustSlider.h"

#include <oleacc.h>

#include <algorithm>

#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/controls/ScrollRepeat.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

// At 96 dpi.
constexpr int kThumbLength = 10;
constexpr int kThickness = 28;
constexpr int kTrackThickness = 4;

constexpr std::uint32_t kPaletteLine = 10;
constexpr COLORREF kDisabledTrack = 0xF2F2F2;
constexpr COLORREF kThumbFill = 0xE6E6E6;
constexpr COLORREF kDisabledThumbFill = 0xEDEDED;
constexpr COLORREF kDisabledThumbFrame = 0xEBEBEB;

struct Key {
    WPARAM key;
    int direction; // 1: the position grows
    std::uint16_t code;
};
constexpr Key kKeys[] = {{VK_PRIOR, 1, SB_PAGEUP},   {VK_UP, 1, SB_LINEUP},
                         {VK_RIGHT, 1, SB_LINEUP},   {VK_NEXT, -1, SB_PAGEDOWN},
                         {VK_LEFT, -1, SB_LINEDOWN}, {VK_DOWN, -1, SB_LINEDOWN}};

} // namespace

PixelRect ObFlatSlider::Placed(const PixelRect& place) {
    const int thickness = Scale(kThickness);
    PixelRect placed = place;
    if (Orientation() == ScrollOrientation::Vertical) {
        placed.left = place.left + (place.Width() - thickness) / 2;
        placed.right = placed.left + thickness;
    } else {
        placed.top = place.top + (place.Height() - thickness) / 2;
        placed.bottom = placed.top + thickness;
    }
    return placed;
}

ScrollLayout ObFlatSlider::LaidOut(PixelPoint size) {
    return LayOutSlider({Orientation(), size, Scale(kThumbLength), Scale(kTrackThickness)}, Range(),
                        Position());
}

void ObFlatSlider::ComputeFocusRectangle() { focusRectangle = ClientArea(window); }

LONG ObFlatSlider::AccessibleRole() { return ROLE_SYSTEM_SLIDER; }

void ObFlatSlider::OnRangeSet() { ChangePage(SliderPage(Range())); }

void ObFlatSlider::SetPageSize(std::int32_t value) {
    ObFlatScrollbar::SetPageSize(value < 0 ? SliderPage(Range()) : value);
}

void ObFlatSlider::LimitState() { ChangePosition(MovedWithin(Range(), Position(), 0)); }

void ObFlatSlider::OnSetFocus() {
    const auto presence = Presence();
    ObFlatScrollbar::OnSetFocus();
    if (!presence.expired()) PaintNow(false);
}

// Before the parent is told, so that a position which the parent then sets remains.
void ObFlatSlider::OnDragEnding(std::int32_t value) {
    ForgetDrag();
    ChangePosition(MovedWithin(Range(), value, 0));
}

void ObFlatSlider::OnThumbReleased(std::int32_t) { MoveTo(Position()); }

// The parent has been told the values of the drag: the last one counts.
void ObFlatSlider::OnDragBroken(std::int32_t value) {
    MoveTo(MovedWithin(Range(), value, 0));
    Notify(SB_THUMBPOSITION, Position());
}

// A page towards the press. A press that is repeated ends where the thumb has passed the mouse: it
// would swing around it.
void ObFlatSlider::OnPartPressed(ScrollPart part) {
    if (TheScrollRepeat().IsRunning(window) && part != pressedSide_) {
        TheScrollRepeat().Stop(window);
        return;
    }
    pressedSide_ = part;
    const auto presence = Presence();
    const std::int64_t page = Range().page;
    MoveTo(MovedWithin(Range(), Position(), part == ScrollPart::PageBefore ? -page : page));
    Notify(SB_THUMBPOSITION, Position());
    if (!presence.expired()) RepeatPress();
}

bool ObFlatSlider::OnKeyDown(WPARAM key) {
    const auto* const found = std::ranges::find(kKeys, key, &Key::key);
    if (found == std::end(kKeys)) return false;
    const std::int64_t step = SliderStep(Range());
    MoveTo(MovedWithin(Range(), Position(), found->direction * step));
    Notify(found->code);
    return true;
}

void ObFlatSlider::PaintParts(HDC dc, const PixelRect& area) {
    const bool isEnabled = IsWindowEnabled(window) != FALSE;
    FillArea(dc, area, GetFillColor());
    FillArea(dc, Layout().track, isEnabled ? GetPaletteColor(kPaletteLine) : kDisabledTrack);
    PaintThumb(dc);
    if (!ShowsFocus()) return;
    if (!IsHighContrast() && StateFrame(ScrollPart::Thumb) == kNoColor) {
        FrameArea(dc, Layout().thumb, GetPaletteColor(kPaletteAccent));
    }
    ComputeFocusRectangle();
    DrawFocus(dc);
}

void ObFlatSlider::PaintThumb(HDC dc) {
    const bool isEnabled = IsWindowEnabled(window) != FALSE;
    const PixelRect& thumb = Layout().thumb;
    if (IsHighContrast()) {
        FillArea(dc, thumb, GetSysColor(COLOR_WINDOW));
        FrameArea(dc, thumb, GetSysColor(COLOR_WINDOWFRAME));
    } else {
        FillArea(dc, thumb, isEnabled ? kThumbFill : kDisabledThumbFill);
        FrameArea(dc, thumb, isEnabled ? GetPaletteColor(kPaletteLine) : kDisabledThumbFrame);
    }
    const COLORREF frame = StateFrame(ScrollPart::Thumb);
    if (frame != kNoColor) FrameArea(dc, thumb, frame);
}

} // namespace ObLibX
