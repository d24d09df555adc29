#include "ObLibX/src/controls/OffscreenPaint.h"

namespace ObLibX {
namespace {

constexpr UINT kScreenBits = 32;

} // namespace

PixelRect ClientArea(HWND window) {
    RECT rect{};
    GetClientRect(window, &rect);
    return AsPixels(rect);
}

// With the brush that each device context has, so that no object is made for it.
void FillArea(HDC dc, const PixelRect& area, COLORREF color) {
    const RECT rect = AsRect(area);
    const COLORREF old = SetDCBrushColor(dc, color);
    FillRect(dc, &rect, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
    SetDCBrushColor(dc, old);
}

void FrameArea(HDC dc, const PixelRect& area, COLORREF color, int thickness) {
    const PixelRect inner{area.left + thickness, area.top + thickness, area.right - thickness,
                          area.bottom - thickness};
    if (inner.IsEmpty()) {
        FillArea(dc, area, color);
        return;
    }
    FillArea(dc, {area.left, area.top, area.right, inner.top}, color);
    FillArea(dc, {area.left, inner.bottom, area.right, area.bottom}, color);
    FillArea(dc, {area.left, inner.top, inner.left, inner.bottom}, color);
    FillArea(dc, {inner.right, inner.top, area.right, inner.bottom}, color);
}

OffscreenPaint::OffscreenPaint(HWND window, HDC target)
    : area_(ClientArea(window)), target_(target) {
    if (area_.IsEmpty() || target == nullptr) return;
    dc_.Reset(CreateCompatibleDC(target));
    if (!dc_) return;
    // Nearly every screen has 32 bits. To ask it for its own takes a hundred times as long where
    // another process knows the answer.
    Take(CreateBitmap(area_.Width(), area_.Height(), 1, kScreenBits, nullptr));
    if (!bitmap_) Take(CreateCompatibleBitmap(target, area_.Width(), area_.Height()));
}

// A bitmap that doesn't fit the screen is refused.
void OffscreenPaint::Take(HBITMAP bitmap) {
    bitmap_.Reset(bitmap);
    if (bitmap_) old_ = SelectObject(dc_.Get(), bitmap_.Get());
    if (old_ == nullptr) bitmap_.Reset();
}

OffscreenPaint::~OffscreenPaint() {
    if (old_ != nullptr) SelectObject(dc_.Get(), old_);
}

void OffscreenPaint::Show() const {
    if (!bitmap_) return;
    BitBlt(target_, 0, 0, area_.Width(), area_.Height(), dc_.Get(), 0, 0, SRCCOPY);
}

} // namespace ObLibX
