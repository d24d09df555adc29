#include "demo/mailpage/Drawing.h"

#include <algorithm>

namespace mailpage {
namespace {

using Gdiplus::REAL;

Gdiplus::Color Ink(COLORREF colour) {
    return Gdiplus::Color(GetRValue(colour), GetGValue(colour), GetBValue(colour));
}

ObLib::UniqueFont MakeFont(int height, int weight) {
    return ObLib::UniqueFont(CreateFontW(-height, 0, 0, 0, weight, FALSE, FALSE, FALSE,
                                         DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                                         CLEARTYPE_QUALITY, DEFAULT_PITCH | FF_SWISS, L"Segoe UI"));
}

void AddRounded(Gdiplus::GraphicsPath& path, const RECT& area, int radius) {
    // Pixels have their middle at whole numbers here, so that a border of one pixel is sharp.
    const REAL left = static_cast<REAL>(area.left);
    const REAL top = static_cast<REAL>(area.top);
    const REAL right = static_cast<REAL>(area.right - 1);
    const REAL bottom = static_cast<REAL>(area.bottom - 1);
    const REAL size = std::min({static_cast<REAL>(radius) * 2, right - left, bottom - top});
    path.AddArc(left, top, size, size, 180, 90);
    path.AddArc(right - size, top, size, size, 270, 90);
    path.AddArc(right - size, bottom - size, size, size, 0, 90);
    path.AddArc(left, bottom - size, size, size, 90, 90);
    path.CloseFigure();
}

// A drawing of 16 by 16 units in the middle of an area.
class Glyph {
public:
    Glyph(HDC dc, const RECT& area, Scale scale, COLORREF ink)
        : graphics_(dc), pen_(Ink(ink), 1.6f) {
        const REAL unit = static_cast<REAL>(scale(16)) / 16;
        graphics_.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
        graphics_.TranslateTransform(static_cast<REAL>(area.left + area.right) / 2 - 8 * unit,
                                     static_cast<REAL>(area.top + area.bottom) / 2 - 8 * unit);
        graphics_.ScaleTransform(unit, unit);
        pen_.SetLineCap(Gdiplus::LineCapRound, Gdiplus::LineCapRound, Gdiplus::DashCapRound);
        pen_.SetLineJoin(Gdiplus::LineJoinRound);
    }

    Gdiplus::Graphics& Graphics() { return graphics_; }
    const Gdiplus::Pen& Pen() const { return pen_; }

private:
    Gdiplus::Graphics graphics_;
    Gdiplus::Pen pen_;
};

} // namespace

GdiplusSession::GdiplusSession() {
    const Gdiplus::GdiplusStartupInput input;
    Gdiplus::GdiplusStartup(&token_, &input, nullptr);
}

GdiplusSession::~GdiplusSession() { Gdiplus::GdiplusShutdown(token_); }

Fonts::Fonts(Scale scale)
    : text(MakeFont(scale(14), FW_NORMAL)), bold(MakeFont(scale(14), FW_SEMIBOLD)),
      small(MakeFont(scale(12), FW_NORMAL)) {}

BufferedPaint::BufferedPaint(HDC target, const RECT& area)
    : target_(target), area_(area), memory_(CreateCompatibleDC(target)),
      bitmap_(CreateCompatibleBitmap(target, area.right - area.left, area.bottom - area.top)),
      old_(SelectObject(memory_.Get(), bitmap_.Get())) {
    SetWindowOrgEx(memory_.Get(), area.left, area.top, nullptr);
}

BufferedPaint::~BufferedPaint() {
    BitBlt(target_, area_.left, area_.top, area_.right - area_.left, area_.bottom - area_.top,
           memory_.Get(), area_.left, area_.top, SRCCOPY);
    SelectObject(memory_.Get(), old_);
}

void FillArea(HDC dc, const RECT& area, COLORREF fill) {
    const ObLib::UniqueBrush brush(CreateSolidBrush(fill));
    FillRect(dc, &area, brush.Get());
}

void FillRounded(HDC dc, const RECT& area, int radius, COLORREF fill, COLORREF border) {
    Gdiplus::Graphics graphics(dc);
    graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    Gdiplus::GraphicsPath path;
    AddRounded(path, area, radius);
    const Gdiplus::SolidBrush brush(Ink(fill));
    graphics.FillPath(&brush, &path);
    const Gdiplus::Pen pen(Ink(border), 1.0f);
    graphics.DrawPath(&pen, &path);
}

void DrawLine(HDC dc, HFONT font, const RECT& area, COLORREF ink, const std::wstring& text,
              UINT format) {
    const HGDIOBJ old = SelectObject(dc, font);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, ink);
    RECT place = area;
    DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &place,
              DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX | format);
    SelectObject(dc, old);
}

void DrawPaperClip(HDC dc, const RECT& area, Scale scale, COLORREF ink) {
    Glyph glyph(dc, area, scale, ink);
    Gdiplus::GraphicsPath path;
    path.AddLine(10.5f, 4.5f, 10.5f, 11.0f);
    path.AddArc(5.5f, 8.5f, 5.0f, 5.0f, 0, 180);
    path.AddLine(5.5f, 11.0f, 5.5f, 4.5f);
    path.AddArc(5.5f, 2.0f, 3.4f, 3.4f, 180, 180);
    path.AddLine(8.9f, 4.0f, 8.9f, 10.5f);
    glyph.Graphics().DrawPath(&glyph.Pen(), &path);
}

void DrawLock(HDC dc, const RECT& area, Scale scale, COLORREF ink) {
    Glyph glyph(dc, area, scale, ink);
    glyph.Graphics().DrawArc(&glyph.Pen(), 5.2f, 2.5f, 5.6f, 6.5f, 180, 180);
    glyph.Graphics().DrawLine(&glyph.Pen(), 5.2f, 5.6f, 5.2f, 7.0f);
    glyph.Graphics().DrawLine(&glyph.Pen(), 10.8f, 5.6f, 10.8f, 7.0f);
    const Gdiplus::SolidBrush brush(Ink(ink));
    glyph.Graphics().FillRectangle(&brush, 3.5f, 7.0f, 9.0f, 6.5f);
}

void DrawArrow(HDC dc, const RECT& area, Scale scale, COLORREF ink, bool toTheLeft) {
    Glyph glyph(dc, area, scale, ink);
    const REAL tip = toTheLeft ? 3.0f : 13.0f;
    const REAL barb = toTheLeft ? 7.5f : 8.5f;
    glyph.Graphics().DrawLine(&glyph.Pen(), 3.0f, 8.0f, 13.0f, 8.0f);
    glyph.Graphics().DrawLine(&glyph.Pen(), tip, 8.0f, barb, 3.5f);
    glyph.Graphics().DrawLine(&glyph.Pen(), tip, 8.0f, barb, 12.5f);
}

UniqueIcon MakeEnvelopeIcon(int size) {
    Gdiplus::Bitmap bitmap(size, size, PixelFormat32bppARGB);
    Gdiplus::Graphics graphics(&bitmap);
    graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    const REAL unit = static_cast<REAL>(size) / 16;
    graphics.ScaleTransform(unit, unit);
    const Gdiplus::SolidBrush blue(Ink(colour::kAccent));
    graphics.FillRectangle(&blue, 1.0f, 3.0f, 14.0f, 10.0f);
    const Gdiplus::Pen white(Gdiplus::Color(255, 255, 255), 1.4f);
    graphics.DrawLine(&white, 1.5f, 3.8f, 8.0f, 9.0f);
    graphics.DrawLine(&white, 8.0f, 9.0f, 14.5f, 3.8f);
    HICON icon = nullptr;
    bitmap.GetHICON(&icon);
    return UniqueIcon(icon);
}

} // namespace mailpage
