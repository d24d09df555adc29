#include "ObLibX/src/dialog/ObCustCtrl.h"

#include <commctrl.h>

#include <algorithm>

#include "ObLib/Src/ObFatal.h"
#include "ObLib/Src/Win32/Guarded.h"
#include "ObLibX/src/dialog/DlgFont.h"
#include "ObLibX/src/dialog/Images.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/dialog/SharedImage.h"
#include "ObLibX/src/dialog/WindowSubclass.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

constexpr wchar_t kModule[] = L"ObLibX\\src\\ObCustCtrl.cpp";

constexpr std::int32_t kFallbackFontSize = 9;

PixelRect WindowRectAtOrigin(HWND window) {
    RECT rect{};
    GetWindowRect(window, &rect);
    return {0, 0, rect.right - rect.left, rect.bottom - rect.top};
}

PixelRect Grown(const PixelRect& rect, int by) {
    return {rect.left - by, rect.top - by, rect.right + by, rect.bottom + by};
}

PixelRect Clipped(const PixelRect& rect, const PixelRect& to) {
    return {std::max(rect.left, to.left), std::max(rect.top, to.top),
            std::min(rect.right, to.right), std::min(rect.bottom, to.bottom)};
}

} // namespace

ObCustomControl::ObCustomControl(std::int32_t controlId, const std::int32_t* imageList,
                                 const ObLib::ObString& name, std::int32_t size)
    : id(controlId), images(imageList), fontName(name), fontSize(size) {
    UsePalette(&ObCustomControl::hoverColor, kPaletteHover);
}

// A window that outlives its object goes on as a stock one.
ObCustomControl::~ObCustomControl() {
    if (window == nullptr) return;
    RemoveSubclass(window, &ObCustomControl::Procedure, this);
}

void ObCustomControl::Attach(HWND attached) {
    window = attached;
    SettleFont();
    endEllipsis = false;
    AddSubclass(window, &ObCustomControl::Procedure, this);
}

// A name and a size in place of those that are left open.
void ObCustomControl::SettleFont() {
    if (!fontName.HasText()) {
        std::int32_t baseSize = 0;
        fontName = GetBaseFont(baseSize);
        if (fontSize == 0) fontSize = baseSize;
    }
    if (fontSize == 0) fontSize = kFallbackFontSize;
}

LRESULT CALLBACK ObCustomControl::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                            UINT_PTR, DWORD_PTR object) {
    auto* const control = reinterpret_cast<ObCustomControl*>(object);
    if (message == WM_NCDESTROY) {
        RemoveSubclass(window, &ObCustomControl::Procedure, control);
        control->window = nullptr;
    } else if (message == WM_KEYUP) {
        static_cast<void>(ObLib::RanGuarded([&] { control->OnKeyUp(wParam); }));
    }
    return CallNextSubclass(window, message, wParam, lParam);
}

void ObCustomControl::OnKeyUp(WPARAM key) {
    if (ownerPage == nullptr || GetKeyState(VK_CONTROL) >= 0) return;
    if (key == VK_NEXT) ownerPage->SelectNextPage();
    if (key == VK_PRIOR) ownerPage->SelectPreviousPage();
}

HBRUSH ObCustomControl::OnCtlColor(HDC dc, HWND control) {
    const bool isTransparent =
        (GetWindowLongPtrW(control, GWL_EXSTYLE) & WS_EX_TRANSPARENT) != 0 && !IsHighContrast();
    if (!isTransparent) return nullptr;
    SetBkMode(dc, TRANSPARENT);
    return static_cast<HBRUSH>(GetStockObject(NULL_BRUSH));
}

// Without a window the system would take all windows for this one.
void ObCustomControl::Refresh() {
    if (window != nullptr) InvalidateRect(window, nullptr, FALSE);
}

COLORREF ObCustomControl::GetTextColor() {
    return IsHighContrast() ? GetSysColor(COLOR_WINDOWTEXT) : textColor;
}

COLORREF ObCustomControl::GetFillColor() {
    if (IsHighContrast()) return GetSysColor(COLOR_WINDOW);
    if (isPressed && GetPressedColor() != kNoColor) return GetPressedColor();
    if (animatedColor != kNoColor) return animatedColor;
    return fillColor != kNoColor ? fillColor : GetParentBackground(window);
}

void ObCustomControl::DrawImage(HDC dc, HBITMAP bitmap, int x, int y) {
    ObLib::UniqueBitmap recolored;
    if (!noHighContrastRecolor) {
        recolored = RecolorForHighContrast(bitmap, IsWindowEnabled(window) != FALSE);
    }
    const SharedImage* const shared = recolored ? nullptr : FindSharedImage(bitmap);
    if (shared != nullptr) {
        shared->Draw(dc, x, y);
    } else {
        DrawImageAt(dc, recolored ? recolored.Get() : bitmap, x, y);
    }
}

void ObCustomControl::DrawFocus(HDC dc) {
    if (GetFocus() != window || focusRectangle.IsEmpty()) return;
    const RECT rect{focusRectangle.left, focusRectangle.top, focusRectangle.right,
                    focusRectangle.bottom};
    DrawFocusRect(dc, &rect);
}

void ObCustomControl::ComputeFocusRectangle() { PlaceFocusRectangle(Scale(kFocusBoxInset)); }

void ObCustomControl::PlaceFocusRectangle(std::int32_t inset) {
    focusRectangle = clipFocusToText ? Clipped(Grown(textRectangle, inset), layoutRectangle)
                                     : Grown(WindowRectAtOrigin(window), -inset);
}

HFONT ObCustomControl::GetControlFont() const {
    return GetFont(fontSize, fontName, fontWeight, fontStyle);
}

void ObCustomControl::SetControlFont(const ObLib::ObString& name, std::int32_t size,
                                     std::int32_t weight, std::int32_t style) {
    fontName = name;
    fontSize = size;
    fontWeight = weight;
    fontStyle = style;
    if (window == nullptr) return;
    SettleFont();
    OnFontChanged();
}

void ObCustomControl::OnFontChanged() {
    SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(GetControlFont()), TRUE);
}

void ObCustomControl::SetTextColor(COLORREF color) {
    textColor = color;
    Refresh();
}

void ObCustomControl::SetFillColor(COLORREF color) {
    fillColor = color;
    Refresh();
}

void ObCustomControl::UsePalette(COLORREF ObCustomControl::*color, std::uint32_t entry) {
    const auto uses = [&](auto wanted) {
        return std::ranges::find(paletteUses_, wanted, &PaletteUse::color);
    };
    auto use = uses(color);
    if (use == paletteUses_.end()) use = uses(PaletteUse().color); // a free place
    ObAssert(use != paletteUses_.end());
    this->*color = GetPaletteColor(entry);
    *use = {color, entry, this->*color};
}

void ObCustomControl::TakePaletteColors() {
    for (const PaletteUse& use : paletteUses_) {
        if (use.color != nullptr && this->*use.color == use.taken) UsePalette(use.color, use.entry);
    }
}

} // namespace ObLibX
