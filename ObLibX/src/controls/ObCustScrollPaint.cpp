// How the flat scroll bar is painted.
#include <algorithm>

#include "ObLibX/src/controls/ControlText.h"
#include "ObLibX/src/controls/FittingImage.h"
#include "ObLibX/src/controls/ObCustScroll.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/dialog/Images.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

constexpr COLORREF kTrackColor = 0xF0F0F0;
constexpr std::uint32_t kPaletteHotFrame = 7;
constexpr std::uint32_t kPaletteThumb = 10;

// At 96 dpi, in high contrast.
constexpr int kGripLines = 3;
constexpr int kGripDistance = 3;
constexpr int kFocusInset = 2;

// By orientation: enabled and disabled pictures at the start and at the end of the bar.
constexpr ControlImage kArrows[][4] = {{ControlImage::LeftArrow, ControlImage::LeftArrowDisabled,
                                        ControlImage::RightArrow, ControlImage::RightArrowDisabled},
                                       {ControlImage::UpArrow, ControlImage::UpArrowDisabled,
                                        ControlImage::DownArrow, ControlImage::DownArrowDisabled}};

// Short lines across the middle of the thumb.
void PaintGrip(HDC dc, const PixelRect& thumb, bool isVertical, COLORREF color) {
    const PixelPoint centre = thumb.Centre();
    const int line = Scale(1);
    const int half = (isVertical ? thumb.Width() : thumb.Height()) / 4;
    for (int at = 0; at < kGripLines; ++at) {
        const int offset = Scale(kGripDistance) * (at - kGripLines / 2) - line / 2;
        const PixelRect grip = isVertical ? PixelRect{centre.x - half, centre.y + offset,
                                                      centre.x + half, centre.y + offset + line}
                                          : PixelRect{centre.x + offset, centre.y - half,
                                                      centre.x + offset + line, centre.y + half};
        if (thumb.Contains(grip)) FillArea(dc, grip, color);
    }
}

} // namespace

void ObFlatScrollbar::LoadArrows() {
    const auto& images = kArrows[static_cast<std::size_t>(orientation_)];
    const int thickness =
        GetSystemMetrics(orientation_ == ScrollOrientation::Vertical ? SM_CXVSCROLL : SM_CYHSCROLL);
    const std::int32_t scale = LargestFittingScale(images[0], thickness);
    for (std::size_t at = 0; at < std::size(images); ++at) {
        arrowImages_[at] = ImageOfScale(images[at], scale);
    }
}

void ObFlatScrollbar::Paint(HDC dc, bool recalculate) {
    if (recalculate) ComputeLayout();
    const OffscreenPaint picture(window, dc);
    if (!picture) return;
    PaintParts(picture.Dc(), picture.Area());
    picture.Show();
}

void ObFlatScrollbar::PaintNow(bool recalculate) {
    if (window == nullptr || !IsWindowVisible(window)) return;
    const ClientDc dc(window);
    if (dc.Get() != nullptr) Paint(dc.Get(), recalculate);
}

ScrollPart ObFlatScrollbar::HotPart() const {
    if (isDragging_) return ScrollPart::Thumb;
    return hasCapture_ ? HitTest(layout_, lastMouse_) : ScrollPart::None;
}

COLORREF ObFlatScrollbar::StateFrame(ScrollPart part) const {
    if (part != HotPart() || !IsWindowEnabled(window) || !IsArrowOn(part)) return kNoColor;
    if (!isMouseDown_) return GetPaletteColor(kPaletteHotFrame);
    return part == pressedPart_ ? GetPaletteColor(kPaletteAccent) : kNoColor;
}

bool ObFlatScrollbar::ShowsFocus() const {
    return GetFocus() == window && (HiddenCues(*this) & UISF_HIDEFOCUS) == 0;
}

void ObFlatScrollbar::PaintParts(HDC dc, const PixelRect& area) {
    const bool isContrast = IsHighContrast();
    FillArea(dc, area, isContrast ? GetSysColor(COLOR_SCROLLBAR) : kTrackColor);
    if (isContrast) FrameArea(dc, area, GetSysColor(COLOR_WINDOWFRAME));
    PaintArrow(dc, ScrollPart::UpArrow, layout_.upArrow);
    PaintArrow(dc, ScrollPart::DownArrow, layout_.downArrow);
    PaintThumb(dc);
    focusRectangle = ShowsFocus() ? Inset(layout_.thumb, Scale(kFocusInset)) : PixelRect{};
    DrawFocus(dc);
}

void ObFlatScrollbar::PaintThumb(HDC dc) {
    const PixelRect& thumb = layout_.thumb;
    if (thumb.IsEmpty()) return;
    if (IsHighContrast()) {
        const COLORREF line = GetSysColor(COLOR_WINDOWFRAME);
        FillArea(dc, thumb, GetSysColor(COLOR_WINDOW));
        FrameArea(dc, thumb, line);
        PaintGrip(dc, thumb, orientation_ == ScrollOrientation::Vertical, line);
    } else {
        FillArea(dc, thumb, GetPaletteColor(kPaletteThumb));
    }
    const COLORREF frame = StateFrame(ScrollPart::Thumb);
    if (frame != kNoColor) FrameArea(dc, thumb, frame);
}

// An arrow that is switched off looks disabled, in high contrast too, where the picture is one
// colour.
void ObFlatScrollbar::PaintArrow(HDC dc, ScrollPart part, const PixelRect& area) {
    if (area.IsEmpty()) return;
    const bool isOn = IsArrowOn(part) && IsWindowEnabled(window);
    const HBITMAP bitmap =
        arrowImages_[(part == ScrollPart::UpArrow ? 0 : 2) + (isOn ? 0 : 1)].Get();
    const auto recolored = RecolorForHighContrast(bitmap, isOn);
    const SIZE size = ImageSize(bitmap);
    DrawImageAt(dc, recolored ? recolored.Get() : bitmap, area.left + (area.Width() - size.cx) / 2,
                area.top + (area.Height() - size.cy) / 2);
    const COLORREF frame = StateFrame(part);
    if (frame != kNoColor) FrameArea(dc, area, frame);
}

} // namespace ObLibX
