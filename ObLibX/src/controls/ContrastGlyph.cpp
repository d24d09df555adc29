#include "ObLibX/src/controls/ContrastGlyph.h"

#include <objidl.h>

#include <algorithm>

// The headers of GDI+ use these two without their namespace.
using std::max;
using std::min;
#include <gdiplus.h>

#include "ObLibX/src/controls/ButtonLayout.h"
#include "ObLibX/src/controls/OffscreenPaint.h"

namespace ObLibX {
namespace {

constexpr COLORREF kOuterCircle = 0xC0C0C0;

// Thinner than a box's frame, so that a radio that is off has room inside.
std::int32_t CircleLine(std::int32_t width) {
    constexpr std::int32_t kShare = 16; // of the width
    return std::max(1, width / kShare);
}

Gdiplus::Color Opaque(COLORREF color) {
    return {255, GetRValue(color), GetGValue(color), GetBValue(color)};
}

void FillTriangle(HDC dc, const PixelRect& area, COLORREF color) {
    Gdiplus::Graphics graphics(dc);
    graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    graphics.SetPixelOffsetMode(Gdiplus::PixelOffsetModeHalf); // pixels are areas, not points
    const auto left = static_cast<float>(area.left);
    const auto right = static_cast<float>(area.right);
    const auto bottom = static_cast<float>(area.bottom);
    const Gdiplus::PointF corners[] = {
        {(left + right) / 2, static_cast<float>(area.top)}, {right, bottom}, {left, bottom}};
    const Gdiplus::SolidBrush brush(Opaque(color));
    graphics.FillPolygon(&brush, corners, 3);
}

// By GDI: its circles fill their rectangle to the last pixel, and have the hard edges of the frame.
void FillCircle(HDC dc, const PixelRect& area, COLORREF color) {
    if (area.IsEmpty()) return;
    const int saved = SaveDC(dc);
    SelectObject(dc, GetStockObject(DC_BRUSH));
    SelectObject(dc, GetStockObject(DC_PEN));
    SetDCBrushColor(dc, color);
    SetDCPenColor(dc, color);
    Ellipse(dc, area.left, area.top, area.right, area.bottom);
    RestoreDC(dc, saved);
}

} // namespace

void DrawContrastCheck(HDC dc, const PixelRect& box, CheckState state, COLORREF color) {
    FrameArea(dc, box, color, ContrastLine(box.Width()));
    const PixelRect sign = ContrastSign(box);
    if (state == CheckState::On) FillArea(dc, sign, color);
    if (state == CheckState::Third) FillTriangle(dc, sign, color);
}

// Each circle is a filled one that leaves a line of the one before.
void DrawContrastRadio(HDC dc, const PixelRect& box, bool isOn, const RadioColors& colors) {
    const std::int32_t line = CircleLine(box.Width());
    FillCircle(dc, box, kOuterCircle);
    FillCircle(dc, Inset(box, line), colors.line);
    FillCircle(dc, Inset(box, 2 * line), isOn ? colors.line : colors.ground);
}

} // namespace ObLibX
