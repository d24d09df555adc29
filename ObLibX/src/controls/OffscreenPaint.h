// Painting into a bitmap that is then shown at once, so that nothing flickers.
#pragma once

#include <windows.h>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/dialog/Geometry.h"

namespace ObLibX {

// The system's form of a rectangle, and back.
inline RECT AsRect(const PixelRect& rect) { return {rect.left, rect.top, rect.right, rect.bottom}; }
inline PixelRect AsPixels(const RECT& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

// A window's client area as a rectangle at 0, 0; empty when there is no window.
PixelRect ClientArea(HWND window);

// Fills a rectangle with a colour.
void FillArea(HDC dc, const PixelRect& area, COLORREF color);
// Draws `thickness` pixels of frame inside a rectangle.
void FrameArea(HDC dc, const PixelRect& area, COLORREF color, int thickness = 1);

// The device context of a window's client area for a scope; the system clips it to what is seen.
class ClientDc {
public:
    explicit ClientDc(HWND window) : window_(window), dc_(GetDC(window)) {}
    ~ClientDc() {
        if (dc_ != nullptr) ReleaseDC(window_, dc_);
    }
    ClientDc(const ClientDc&) = delete;
    ClientDc& operator=(const ClientDc&) = delete;
    [[nodiscard]] HDC Get() const { return dc_; } // null when there is none

private:
    HWND window_;
    HDC dc_;
};

// What a window paints into at WM_PAINT, for a scope; then nothing of it is invalid any more.
class PaintDc {
public:
    explicit PaintDc(HWND window) : window_(window), dc_(BeginPaint(window, &paint_)) {}
    ~PaintDc() { EndPaint(window_, &paint_); }
    PaintDc(const PaintDc&) = delete;
    PaintDc& operator=(const PaintDc&) = delete;
    [[nodiscard]] HDC Get() const { return dc_; } // null when there is none

private:
    HWND window_;
    PAINTSTRUCT paint_{};
    HDC dc_;
};

// A bitmap of the size of a window's client area. On the thread of the dialogs, for a scope.
class OffscreenPaint {
public:
    // For a window and the device context that Show copies to. Empty when the client area is, and
    // when the system has no memory for it: then nothing is painted.
    OffscreenPaint(HWND window, HDC target);
    ~OffscreenPaint();
    OffscreenPaint(const OffscreenPaint&) = delete;
    OffscreenPaint& operator=(const OffscreenPaint&) = delete;

    explicit operator bool() const { return static_cast<bool>(bitmap_); }
    [[nodiscard]] HDC Dc() const { return dc_.Get(); }
    [[nodiscard]] const PixelRect& Area() const { return area_; }

    // Copies the bitmap to the target.
    void Show() const;

private:
    void Take(HBITMAP bitmap);

    PixelRect area_;
    HDC target_;
    ObLib::UniqueMemoryDc dc_;
    ObLib::UniqueBitmap bitmap_;
    HGDIOBJ old_ = nullptr; // what the device context had selected
};

} // namespace ObLibX
