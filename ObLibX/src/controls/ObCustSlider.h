// The flat slider: a scroll bar that looks and behaves as a trackbar.
#pragma once

#include "ObLibX/src/controls/ObCustScroll.h"

namespace ObLibX {

// What differs from the bar: no arrows, a position of its own that clicks, keys and drags change,
// and a page that follows the range. The window gets 28 pixels at 96 dpi across, around the middle
// of where it was.
class ObFlatSlider : public ObFlatScrollbar {
public:
    using ObFlatScrollbar::ObFlatScrollbar;

    void ComputeFocusRectangle() override;
    void OnThumbReleased(std::int32_t value) override;
    bool OnKeyDown(WPARAM key) override;
    void OnSetFocus() override;
    // A value below zero is the page that follows the range.
    void SetPageSize(std::int32_t value) override;

protected:
    ScrollLayout LaidOut(PixelPoint size) override;
    PixelRect Placed(const PixelRect& place) override;
    LONG AccessibleRole() override;
    void OnRangeSet() override; // the page follows
    void LimitState() override; // the position only, as a trackbar
    void OnPartPressed(ScrollPart part) override;
    void OnDragEnding(std::int32_t value) override;
    void OnDragBroken(std::int32_t value) override;
    void PaintParts(HDC dc, const PixelRect& area) override;

private:
    void PaintThumb(HDC dc);

    ScrollPart pressedSide_ = ScrollPart::None; // of the thumb, before the repeat
};

} // namespace ObLibX
