// What the mail page's window is drawn with: its colours, its fonts, and smooth shapes.
//
// Lengths are in pixels of 96 dpi and are scaled where they are used. One thread.
#pragma once

#include <windows.h>

#include <objidl.h>

#include <gdiplus.h>

#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace mailpage {

namespace colour { // 0x00BBGGRR
inline constexpr COLORREF kFrame = RGB(0xE3, 0xE8, 0xF0);
inline constexpr COLORREF kPage = RGB(0xF5, 0xF7, 0xFB);
inline constexpr COLORREF kCard = RGB(0xFF, 0xFF, 0xFF);
inline constexpr COLORREF kLine = RGB(0xDD, 0xE2, 0xEA);
inline constexpr COLORREF kText = RGB(0x1F, 0x25, 0x2E);
inline constexpr COLORREF kQuiet = RGB(0x5E, 0x68, 0x76);
inline constexpr COLORREF kTitle = RGB(0x2B, 0x3A, 0x55);
inline constexpr COLORREF kAccent = RGB(0x1B, 0x5F, 0xD9);
inline constexpr COLORREF kAccentDown = RGB(0x14, 0x49, 0xA8);
inline constexpr COLORREF kChip = RGB(0xEE, 0xF3, 0xFC);
inline constexpr COLORREF kOff = RGB(0x9A, 0xA3, 0xB0);
} // namespace colour

// Keeps the drawing library up for its scope.
class GdiplusSession {
public:
    GdiplusSession();
    GdiplusSession(const GdiplusSession&) = delete;
    GdiplusSession& operator=(const GdiplusSession&) = delete;
    ~GdiplusSession();

private:
    ULONG_PTR token_ = 0;
};

struct Scale {
    UINT dpi = 96;
    int operator()(int length) const { return MulDiv(length, static_cast<int>(dpi), 96); }
};

// The fonts of one dpi.
struct Fonts {
    explicit Fonts(Scale scale);

    ObLib::UniqueFont text;
    ObLib::UniqueFont bold;
    ObLib::UniqueFont small;
};

// One drawing of one window, in its memory until the end of the scope: nothing flickers.
class BufferedPaint {
public:
    BufferedPaint(HDC target, const RECT& area);
    BufferedPaint(const BufferedPaint&) = delete;
    BufferedPaint& operator=(const BufferedPaint&) = delete;
    ~BufferedPaint();

    HDC Dc() const { return memory_.Get(); }

private:
    HDC target_;
    RECT area_;
    ObLib::UniqueMemoryDc memory_;
    ObLib::UniqueBitmap bitmap_;
    HGDIOBJ old_;
};

void FillArea(HDC dc, const RECT& area, COLORREF fill);
void FillRounded(HDC dc, const RECT& area, int radius, COLORREF fill, COLORREF border);

// Text on one line, cut with an ellipsis, centred in height. `format` adds DT_ flags.
void DrawLine(HDC dc, HFONT font, const RECT& area, COLORREF ink, const std::wstring& text,
              UINT format = DT_LEFT);

// Small pictures, in the middle of an area.
void DrawPaperClip(HDC dc, const RECT& area, Scale scale, COLORREF ink);
void DrawLock(HDC dc, const RECT& area, Scale scale, COLORREF ink);
void DrawArrow(HDC dc, const RECT& area, Scale scale, COLORREF ink, bool toTheLeft);

struct IconPolicy : ObLib::NullPolicy<HICON> {
    static void Close(Handle icon) noexcept { DestroyIcon(icon); }
};
using UniqueIcon = ObLib::UniqueResource<IconPolicy>;

// An envelope; empty when it can't be made.
UniqueIcon MakeEnvelopeIcon(int size);

} // namespace mailpage
