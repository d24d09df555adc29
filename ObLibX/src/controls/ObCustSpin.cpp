#include "ObLibX/src/controls/ObCustSpin.h"

#include <commctrl.h>
#include <windowsx.h>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLibX/src/controls/FittingImage.h"
#include "ObLibX/src/controls/HelperWindow.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/dialog/Images.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/dialog/WindowSubclass.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

constexpr int kFrameThickness = 2; // at every scale

// By its own style: the dialog may not be visible yet.
bool HasVisibleStyle(HWND window) {
    return (GetWindowLongPtrW(window, GWL_STYLE) & WS_VISIBLE) != 0;
}

} // namespace

ObFlatSpinCtrl::ObFlatSpinCtrl(std::int32_t controlId)
    : ObCustomControl(controlId, nullptr, L"", 0) {
    fillColor = GetPaletteColor(kPaletteButtonFill);
}

// A window that outlives its object goes on as a stock one.
ObFlatSpinCtrl::~ObFlatSpinCtrl() {
    RemoveSubclass(window, &ObFlatSpinCtrl::Procedure, this);
    Detach();
}

// Nothing is left of the window before, in a dialog that is opened again.
void ObFlatSpinCtrl::Attach(HWND attached) {
    buddyRectangle = RectInParent(attached);
    asksForBuddy_ = true;
    isHiddenWithEdit_ = false;
    ObCustomControl::Attach(attached);
    AddSubclass(window, &ObFlatSpinCtrl::Procedure, this);
    PlaceParts(kFrameThickness);
    Refresh();
}

LRESULT CALLBACK ObFlatSpinCtrl::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                           UINT_PTR, DWORD_PTR object) {
    auto* const spin = reinterpret_cast<ObFlatSpinCtrl*>(object);
    if (message == WM_NCDESTROY) {
        RemoveSubclass(window, &ObFlatSpinCtrl::Procedure, spin);
        spin->Detach();
    } else if (ObLib::Guarded(true, [&] { return spin->OnMessage(message, wParam, lParam); })) {
        return message == WM_ERASEBKGND ? TRUE : 0;
    }
    return CallNextSubclass(window, message, wParam, lParam);
}

bool ObFlatSpinCtrl::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != UDM_GETBUDDY) FindEdit();
    switch (message) {
    case WM_PAINT: {
        asksForBuddy_ = false;
        const PaintDc dc(window);
        if (dc.Get() != nullptr) Paint(dc.Get());
        return true;
    }
    case WM_PRINTCLIENT:
        Paint(reinterpret_cast<HDC>(wParam));
        return true;
    case WM_ERASEBKGND:
    case WM_NCPAINT:
        return true;
    case WM_MOUSEMOVE:
        OnMouseMove(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam));
        return false;
    case WM_MOUSELEAVE:
        OnMouseLeave();
        return false;
    case WM_SIZE:
        PlaceParts(edit != nullptr ? edit->frameWidth : kFrameThickness);
        return false;
    case WM_ENABLE:
        if (wParam == FALSE) ForgetMouse();
        Refresh();
        return false;
    case WM_UPDATEUISTATE:
        Refresh();
        return false;
    default:
        return false;
    }
}

// Its object may not be attached yet: then a later message finds it.
void ObFlatSpinCtrl::FindEdit() {
    if (edit != nullptr || !asksForBuddy_) return;
    const auto buddy = reinterpret_cast<HWND>(SendMessageW(window, UDM_GETBUDDY, 0, 0));
    if (buddy == nullptr) return;
    edit = static_cast<ObFlatEdit*>(GetPropW(buddy, kEditProperty));
    if (edit == nullptr) return;
    edit->spinControl = this;
    // The spin covers the right end of the edit, which must not paint over it.
    SetWindowLongPtrW(buddy, GWL_STYLE, GetWindowLongPtrW(buddy, GWL_STYLE) | WS_CLIPSIBLINGS);
    const HWND before = GetWindow(buddy, GW_HWNDPREV);
    if (before != window) {
        SetWindowPos(window, before != nullptr ? before : HWND_TOP, 0, 0, 0, 0,
                     SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    }
    FollowEdit(edit->frameWindow, edit->frameWidth);
    if (!HasVisibleStyle(buddy)) OnEditShown(false);
}

void ObFlatSpinCtrl::Detach() {
    ForgetMouse();
    if (edit != nullptr) edit->spinControl = nullptr;
    edit = nullptr;
}

void ObFlatSpinCtrl::OnEditGone() { edit = nullptr; }

void ObFlatSpinCtrl::FollowEdit(HWND frameWindow, std::int32_t frameWidth) {
    if (window == nullptr || frameWindow == nullptr) return;
    MoveChild(window, PlaceSpin(RectInParent(frameWindow), RectInParent(window).Width()));
    PlaceParts(frameWidth);
    Refresh();
}

// What the dialog has hidden stays hidden.
void ObFlatSpinCtrl::OnEditShown(bool isShown) {
    if (window == nullptr) return;
    if (isShown) {
        if (isHiddenWithEdit_) ShowWindow(window, SW_SHOWNA);
        isHiddenWithEdit_ = false;
    } else if (HasVisibleStyle(window)) {
        isHiddenWithEdit_ = true;
        ShowWindow(window, SW_HIDE);
    }
}

void ObFlatSpinCtrl::PlaceParts(std::int32_t border) {
    layout = LayOutSpin(ClientArea(window), border);
    imageScale = LargestFittingScale(ControlImage::UpArrow, MostSpinArrow(layout));
}

// ---- The mouse

void ObFlatSpinCtrl::OnMouseMove(int x, int y) {
    if (!mouseTracked) {
        TRACKMOUSEEVENT leave{sizeof leave, TME_LEAVE, window, 0};
        mouseTracked = TrackMouseEvent(&leave) != FALSE;
    }
    SetHotPart(HitSpin(layout, {x, y}));
}

void ObFlatSpinCtrl::OnMouseLeave() {
    mouseTracked = false;
    SetHotPart(SpinPart::None);
}

void ObFlatSpinCtrl::ForgetMouse() {
    fade.Stop();
    animatedColor = kNoColor;
    hotPart = SpinPart::None;
    mouseTracked = false;
}

void ObFlatSpinCtrl::SetHotPart(SpinPart part) {
    if (part == hotPart) return;
    fade.Stop();
    animatedColor = kNoColor;
    hotPart = part;
    if (part != SpinPart::None) fade.Start(*this, GetFillColor(), GetHoverColor());
    Refresh();
}

std::uint32_t ObFlatSpinCtrl::SetAnimatedColor(COLORREF color) {
    animatedColor = color;
    Refresh();
    return 1;
}

// ---- Painting

void ObFlatSpinCtrl::Paint(HDC dc) {
    const OffscreenPaint picture(window, dc);
    if (!picture) return;
    const COLORREF line = GetPaletteColor(kPaletteFrame);
    FillArea(picture.Dc(), picture.Area(),
             IsHighContrast() ? GetSysColor(COLOR_BTNFACE) : GetPaletteColor(kPaletteButtonFill));
    if (hotPart == SpinPart::Up) FillArea(picture.Dc(), layout.up, GetFillColor());
    if (hotPart == SpinPart::Down) FillArea(picture.Dc(), layout.down, GetFillColor());
    PaintArrow(picture.Dc(), true, layout.up);
    PaintArrow(picture.Dc(), false, layout.down);
    FillArea(picture.Dc(), {layout.up.left, layout.up.bottom, layout.up.right, layout.down.top},
             line);
    FrameArea(picture.Dc(), picture.Area(), line, kFrameThickness);
    picture.Show();
}

void ObFlatSpinCtrl::PaintArrow(HDC dc, bool isUp, const PixelRect& button) {
    const bool isOn = IsWindowEnabled(window) != FALSE;
    const ControlImage up = isOn ? ControlImage::UpArrow : ControlImage::UpArrowDisabled;
    const ControlImage down = isOn ? ControlImage::DownArrow : ControlImage::DownArrowDisabled;
    const auto bitmap = ImageOfScale(isUp ? up : down, imageScale);
    const SIZE size = ImageSize(bitmap.Get());
    DrawImage(dc, bitmap.Get(), button.left + (button.Width() - size.cx) / 2,
              button.top + (button.Height() - size.cy) / 2);
}

} // namespace ObLibX
