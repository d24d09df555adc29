#include "ObLibX/src/controls/ObCustCombo.h"

#include <commctrl.h>
#include <windowsx.h>

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <utility>

#include "ObLib/Src/ObFatal.h"
#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/ObWinGUI.h"
#include "ObLibX/src/controls/ControlText.h"
#include "ObLibX/src/controls/FittingImage.h"
#include "ObLibX/src/controls/HelperWindow.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/dialog/DlgFont.h"
#include "ObLibX/src/dialog/ImageSet.h"
#include "ObLibX/src/dialog/Images.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/dialog/WindowSubclass.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

constexpr wchar_t kModule[] = L"ObLibX\\src\\ObCustCombo.cpp";

constexpr COLORREF kFocusText = 0xFFFFFF;
constexpr std::int32_t kSimpleFrame = 1; // of the edit, in pixels at every scale
constexpr int kTextPadding = 4;          // at 96 dpi

// After these the stock combo box has painted by itself, or has another text.
constexpr UINT kRepaintedAfter[] = {
    WM_ENABLE,    WM_SETFOCUS,     WM_KILLFOCUS,     WM_SETTEXT,        WM_SETFONT,
    WM_SIZE,      WM_COMMAND,      WM_KEYDOWN,       WM_CHAR,           WM_MOUSEWHEEL,
    WM_LBUTTONUP, WM_LBUTTONDOWN,  WM_LBUTTONDBLCLK, WM_CAPTURECHANGED, WM_UPDATEUISTATE,
    CB_SETCURSEL, CB_SELECTSTRING, CB_RESETCONTENT,  CB_DELETESTRING,   CB_SHOWDROPDOWN,
};

// A frame over the whole window, border and client area.
void FrameNonClient(HWND window, int width) {
    const HDC dc = GetWindowDC(window);
    if (dc == nullptr) return;
    RECT rect{};
    GetWindowRect(window, &rect);
    FrameArea(dc, {0, 0, rect.right - rect.left, rect.bottom - rect.top},
              GetPaletteColor(kPaletteFrame), width);
    ReleaseDC(window, dc);
}

PixelRect OnScreen(HWND window) {
    RECT rect{};
    GetWindowRect(window, &rect);
    return AsPixels(rect);
}

void TakeEdgesOff(HWND window) {
    constexpr LONG_PTR kEdges = WS_EX_CLIENTEDGE | WS_EX_DLGMODALFRAME;
    SetWindowLongPtrW(window, GWL_EXSTYLE, GetWindowLongPtrW(window, GWL_EXSTYLE) & ~kEdges);
    SetWindowPos(window, nullptr, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
}

} // namespace

// ---- All combo boxes

ObFlatComboBoxBase::ObFlatComboBoxBase(std::int32_t controlId, ComboKind kind)
    : ObCustomControl(controlId, nullptr, L"", 0), kind_(kind) {}

void ObFlatComboBoxBase::Attach(HWND attached) {
    ObCustomControl::Attach(attached);
    TakeEdgesOff(window);
    FindParts();
    SetClassLongPtrW(listWindow, GCL_STYLE,
                     static_cast<LONG_PTR>(GetClassLongPtrW(listWindow, GCL_STYLE) &
                                           ~static_cast<ULONG_PTR>(CS_DROPSHADOW)));
    PlaceList();
    for (const auto& [part, procedure] :
         {std::pair{window, &ObFlatComboBoxBase::ComboProcedure},
          std::pair{listWindow, &ObFlatComboBoxBase::ListProcedure}}) {
        AddSubclass(part, procedure, this);
    }
}

// A list alone has no window for its item: the combo box itself shows it, which some systems
// report as its own handle and others as none.
void ObFlatComboBoxBase::FindParts() {
    comboInfo.cbSize = sizeof comboInfo;
    ObAssert(GetComboBoxInfo(window, &comboInfo));
    if (kind_ == ComboKind::DropdownList && comboInfo.hwndItem == nullptr) {
        comboInfo.hwndItem = window;
    }
    ObAssert(comboInfo.hwndItem != nullptr);
    ObAssert(comboInfo.hwndList != nullptr);
    listWindow = comboInfo.hwndList;
}

// A simple combo box has its list as a child, the others on the desktop.
void ObFlatComboBoxBase::PlaceList() {
    const PixelRect list = OnScreen(listWindow);
    const PixelRect place =
        PlaceComboList(kind_, OnScreen(window), OnScreen(comboInfo.hwndItem), list.Height());
    RECT rect = AsRect(place);
    if (kind_ == ComboKind::Simple) {
        MapWindowPoints(HWND_DESKTOP, window, reinterpret_cast<POINT*>(&rect), 2);
    }
    SetWindowPos(listWindow, nullptr, rect.left, rect.top, place.Width(), place.Height(),
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void ObFlatComboBoxBase::MakeEdit(bool hideFrame, std::int32_t frameWidth) {
    editObject = std::make_unique<ObFlatEdit>(GetDlgCtrlID(comboInfo.hwndItem));
    editObject->hideFrame = hideFrame;
    editObject->frameWidth = frameWidth;
    editObject->Attach(comboInfo.hwndItem);
}

void ObFlatComboBoxBase::OnEditNcPaint() { FrameNonClient(window, 1); }
void ObFlatComboBoxBase::OnListNcPaint() { FrameNonClient(listWindow, 1); }

LRESULT CALLBACK ObFlatComboBoxBase::ComboProcedure(HWND window, UINT message, WPARAM wParam,
                                                    LPARAM lParam, UINT_PTR, DWORD_PTR object) {
    auto* const combo = reinterpret_cast<ObFlatComboBoxBase*>(object);
    if (message == WM_NCDESTROY) {
        RemoveSubclass(window, &ObFlatComboBoxBase::ComboProcedure, combo);
        combo->OnMessage(message, wParam, lParam);
        return CallNextSubclass(window, message, wParam, lParam);
    }
    if (ObLib::Guarded(true, [&] { return combo->OnMessage(message, wParam, lParam); })) {
        return message == WM_ERASEBKGND ? TRUE : 0;
    }
    const LRESULT result = CallNextSubclass(window, message, wParam, lParam);
    static_cast<void>(ObLib::RanGuarded([&] {
        if (combo->window == nullptr) return;
        if (message == WM_NCPAINT) combo->OnEditNcPaint();
        if (std::ranges::find(kRepaintedAfter, message) != std::end(kRepaintedAfter)) {
            combo->Refresh();
        }
    }));
    return result;
}

LRESULT CALLBACK ObFlatComboBoxBase::ListProcedure(HWND window, UINT message, WPARAM wParam,
                                                   LPARAM lParam, UINT_PTR, DWORD_PTR object) {
    auto* const combo = reinterpret_cast<ObFlatComboBoxBase*>(object);
    if (message == WM_NCDESTROY) {
        RemoveSubclass(window, &ObFlatComboBoxBase::ListProcedure, combo);
        combo->listWindow = nullptr;
        return CallNextSubclass(window, message, wParam, lParam);
    }
    const LRESULT result = CallNextSubclass(window, message, wParam, lParam);
    if (message == WM_NCPAINT) {
        static_cast<void>(ObLib::RanGuarded([combo] { combo->OnListNcPaint(); }));
    }
    return result;
}

bool ObFlatComboBoxBase::OnMessage(UINT message, WPARAM wParam, LPARAM) {
    if (!PaintsItself()) return false;
    switch (message) {
    case WM_PAINT: {
        const PaintDc dc(window);
        if (dc.Get() != nullptr) Paint(dc.Get());
        return true;
    }
    case WM_PRINTCLIENT:
        Paint(reinterpret_cast<HDC>(wParam));
        return true;
    case WM_ERASEBKGND:
        return true;
    default:
        return false;
    }
}

// ---- Simple

ObFlatComboBoxSimple::ObFlatComboBoxSimple(std::int32_t controlId)
    : ObFlatComboBoxBase(controlId, ComboKind::Simple) {}

void ObFlatComboBoxSimple::Attach(HWND attached) {
    ObFlatComboBoxBase::Attach(attached);
    MakeEdit(false, kSimpleFrame);
}

// ---- With a button

void ObFlatComboBoxDropdownBase::Attach(HWND attached) {
    ObFlatComboBoxBase::Attach(attached);
    LoadArrows();
    buttonWidth = WantedButtonWidth();
    PlaceButton();
}

void ObFlatComboBoxDropdownBase::LoadArrows() {
    const std::int32_t scale = ScaleOfDpi(GetDpi());
    arrowImage = ImageOfScale(ControlImage::DownArrow, scale);
    arrowImageDisabled = ImageOfScale(ControlImage::DownArrowDisabled, scale);
    arrowSize = ImageSize(arrowImage.Get());
}

void ObFlatComboBoxDropdownBase::PlaceButton() {
    buttonRectangle = ComboButton(ClientArea(window), buttonWidth);
    arrowPosition = {
        buttonRectangle.left + (buttonRectangle.Width() - static_cast<int>(arrowSize.cx)) / 2,
        buttonRectangle.top + (buttonRectangle.Height() - static_cast<int>(arrowSize.cy)) / 2};
}

void ObFlatComboBoxDropdownBase::Refresh() {
    if (window == nullptr) return;
    LoadArrows();
    PlaceButton();
    ObFlatComboBoxBase::Refresh();
}

bool ObFlatComboBoxDropdownBase::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCDESTROY) fade.Stop();
    if (message == WM_MOUSEMOVE) OnMouseMove(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam));
    if (message == WM_MOUSELEAVE) OnMouseLeave();
    return ObFlatComboBoxBase::OnMessage(message, wParam, lParam);
}

// No hover where a fade can't be seen or colours are the user's.
void ObFlatComboBoxDropdownBase::OnMouseMove(int x, int y) {
    if (!buttonRectangle.Contains(PixelPoint{x, y})) {
        OnMouseLeave();
        return;
    }
    if (buttonHot || IsLowColor() || IsHighContrast()) return;
    buttonHot = true;
    TRACKMOUSEEVENT leave{sizeof leave, TME_LEAVE, window, 0};
    TrackMouseEvent(&leave);
    fade.Start(*this, GetFillColor(), GetHoverColor());
}

void ObFlatComboBoxDropdownBase::OnMouseLeave() {
    if (!buttonHot) return;
    fade.Stop();
    buttonHot = false;
    animatedButtonColor = kNoColor;
    RepaintButton();
}

std::uint32_t ObFlatComboBoxDropdownBase::SetAnimatedColor(COLORREF color) {
    animatedButtonColor = color;
    RepaintButton();
    return 1;
}

void ObFlatComboBoxDropdownBase::RepaintButton() {
    const RECT button = AsRect(buttonRectangle);
    InvalidateRect(window, &button, FALSE);
}

PixelRect ObFlatComboBoxDropdownBase::TextSpace(const PixelRect& client) const {
    return {client.left + 1, client.top + 1, buttonRectangle.left, client.bottom - 1};
}

// Not over the edit, which paints itself.
void ObFlatComboBoxDropdownBase::Paint(HDC dc) {
    const OffscreenPaint picture(window, dc);
    if (!picture) return;
    if (comboInfo.hwndItem != window) {
        const PixelRect edit = RectInParent(comboInfo.hwndItem);
        ExcludeClipRect(dc, edit.left, edit.top, edit.right, edit.bottom);
    }
    FillArea(picture.Dc(), picture.Area(), GetFillColor());
    PaintText(picture.Dc(), TextSpace(picture.Area()));
    PaintButton(picture.Dc());
    FrameArea(picture.Dc(), picture.Area(), GetPaletteColor(kPaletteFrame));
    picture.Show();
}

void ObFlatComboBoxDropdownBase::PaintButton(HDC dc) {
    const COLORREF fill = animatedButtonColor != kNoColor ? animatedButtonColor : GetFillColor();
    FillArea(dc, buttonRectangle, fill);
    const bool isOn = IsWindowEnabled(window) != FALSE;
    DrawImage(dc, isOn ? arrowImage.Get() : arrowImageDisabled.Get(), arrowPosition.x,
              arrowPosition.y);
    PixelRect line = buttonRectangle;
    line.right = std::min(line.left + 1, line.right);
    FillArea(dc, line, GetPaletteColor(kPaletteFrame));
}

// ---- With an edit

ObFlatComboBoxDropdown::ObFlatComboBoxDropdown(std::int32_t controlId)
    : ObFlatComboBoxDropdownBase(controlId, ComboKind::Dropdown) {}

void ObFlatComboBoxDropdown::Attach(HWND attached) {
    ObFlatComboBoxDropdownBase::Attach(attached);
    MakeEdit(true, kSimpleFrame);
}

std::int32_t ObFlatComboBoxDropdown::WantedButtonWidth() const {
    return ButtonBesideEdit(OnScreen(window), OnScreen(comboInfo.hwndItem));
}

// ---- A list alone

ObFlatComboBoxDropdownList::ObFlatComboBoxDropdownList(std::int32_t controlId)
    : ObFlatComboBoxDropdownBase(controlId, ComboKind::DropdownList) {}

std::int32_t ObFlatComboBoxDropdownList::WantedButtonWidth() const {
    return static_cast<std::int32_t>(arrowSize.cx) + 2 * Scale(padding);
}

void ObFlatComboBoxDropdownList::PaintText(HDC dc, const PixelRect& area) {
    const bool hasFocus = GetFocus() == window;
    if (hasFocus) FillArea(dc, area, GetSysColor(COLOR_HOTLIGHT));
    const HFONT font = GetFont(fontSize, fontName, fontWeight, 0);
    ObAssert(font != nullptr);
    const HGDIOBJ old = SelectObject(dc, font);
    ObLib::ObString text;
    ObLib::GetWindowTextString(window, text);
    RECT place = AsRect(area);
    place.left += Scale(kTextPadding);
    const auto fits = [&](std::size_t count) {
        SIZE size{};
        GetTextExtentPoint32W(dc, text.CStr(), static_cast<int>(count), &size);
        return size.cx <= place.right - place.left;
    };
    const auto count = static_cast<int>(FittingCharacters(std::wcslen(text.CStr()), fits));
    SetBkMode(dc, TRANSPARENT);
    const COLORREF plain = IsWindowEnabled(window) ? GetTextColor() : kDisabledTextColor;
    ::SetTextColor(dc, hasFocus ? kFocusText : plain);
    DrawTextW(dc, text.CStr(), count, &place, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
    SelectObject(dc, old);
}

} // namespace ObLibX
