#include "ObLibX/src/controls/ObCustPassword.h"

#include <windowsx.h>

#include <commctrl.h>
#include <oleacc.h>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLibX/src/controls/ControlImages.h"
#include "ObLibX/src/controls/HelperWindow.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/dialog/ToolkitTexts.h"
#include "ObLibX/src/dialog/Tooltips.h"
#include "ObLibX/src/dialog/WindowSubclass.h"

namespace ObLibX {
namespace {

constexpr WPARAM kPasswordCharacter = L'*';
constexpr LPARAM kWasDown = 1 << 30; // of a key: it repeats

bool IsDown(int key) { return GetKeyState(key) < 0; }

bool IsHidden(HWND edit) { return (GetWindowLongPtrW(edit, GWL_STYLE) & ES_PASSWORD) != 0; }

} // namespace

ObFlatPassword::ObFlatPassword(std::int32_t controlId, const ObLib::ObString& cue)
    : ObFlatEdit(controlId, cue) {}

// Windows that outlive their object go on as stock ones.
ObFlatPassword::~ObFlatPassword() {
    RemoveSubclass(window, &ObFlatPassword::Procedure, this);
    if (window != nullptr) RemovePropW(window, kPasswordProperty);
    RemoveSubclass(eyeButton, &ObFlatPassword::EyeProcedure, this);
}

void ObFlatPassword::Attach(HWND attached) {
    reveal = false; // a field that is opened again hides its text again
    focusAfterPaint = false;
    ObFlatEdit::Attach(attached);
    MakeEye();
    tooltipWindow = MakeTooltipWindow(GetParent(window));
    SetPropW(window, kPasswordProperty, this);
    AddSubclass(window, &ObFlatPassword::Procedure, this);
    SendMessageW(window, EM_SETPASSWORDCHAR, kPasswordCharacter, 0);
}

void ObFlatPassword::MakeEye() {
    const HWND parent = GetParent(window);
    wchar_t title[32] = {};
    wsprintfW(title, L"Eyeball %d", CountHelpers(parent, kEditEyeProperty) + 1);
    HelperTraits traits;
    traits.className = L"button";
    traits.title = title;
    // As a group of its own it is out of the reach of arrow keys, too.
    traits.style = WS_GROUP;
    if (IsShown() && IsWindowEnabled(window)) traits.style |= WS_VISIBLE;
    traits.extendedStyle = WS_EX_TRANSPARENT;
    traits.property = kEditEyeProperty;
    eyeButton = MakeHelperWindow(parent, EyeIn(frameRectangle, frameWidth, EyeWidth()), traits);
    if (eyeButton == nullptr) return;
    AddSubclass(eyeButton, &ObFlatPassword::EyeProcedure, this);
}

// ---- the edit

LRESULT CALLBACK ObFlatPassword::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                           UINT_PTR, DWORD_PTR object) {
    auto* const password = reinterpret_cast<ObFlatPassword*>(object);
    if (message == WM_NCDESTROY) {
        RemovePropW(window, kPasswordProperty);
        password->DestroyHelpers();
        RemoveSubclass(window, &ObFlatPassword::Procedure, password);
    } else if (message == WM_KEYDOWN || message == WM_SYSKEYDOWN) {
        static_cast<void>(ObLib::RanGuarded([&] { password->OnKeyDown(wParam, lParam); }));
    }
    return CallNextSubclass(window, message, wParam, lParam);
}

// The system destroys neither with the edit: on a page the tooltip's owner is the window around the
// pages.
void ObFlatPassword::DestroyHelpers() {
    if (IsWindow(tooltipWindow)) DestroyWindow(tooltipWindow);
    tooltipWindow = nullptr;
    if (eyeButton != nullptr) DestroyWindow(eyeButton);
}

// Keys that repeat don't count, or the text would flicker.
void ObFlatPassword::OnKeyDown(WPARAM key, LPARAM flags) {
    const bool isOfPair = (key == VK_MENU || key == VK_F8) && (flags & kWasDown) == 0;
    if (!isOfPair || !IsDown(VK_MENU) || !IsDown(VK_F8) || !IsWindowEnabled(window)) return;
    const HWND edit = window;
    Toggle();
    if (IsWindow(edit)) FocusAtEnd();
}

void ObFlatPassword::OnHandled(UINT message, WPARAM wParam, LPARAM lParam) {
    ObFlatEdit::OnHandled(message, wParam, lParam);
    if (message == WM_ENABLE) OnShow(WasShown());
    if (message == EM_SETPASSWORDCHAR) RepaintEye();
}

void ObFlatPassword::OnLayoutChanged() {
    ObFlatEdit::OnLayoutChanged();
    if (eyeButton == nullptr) return;
    MoveChild(eyeButton, EyeIn(frameRectangle, frameWidth, EyeWidth()));
    RepaintEye();
}

void ObFlatPassword::Refresh() {
    ObFlatEdit::Refresh();
    RepaintEye();
}

void ObFlatPassword::OnShow(bool isShown) {
    ObFlatEdit::OnShow(isShown);
    if (eyeButton == nullptr) return;
    ShowWindow(eyeButton, isShown && IsWindowEnabled(window) ? SW_SHOWNA : SW_HIDE);
    Refresh();
}

// What another control does as it loses the focus may end the dialog, and the object with it.
void ObFlatPassword::Toggle() {
    const HWND edit = window;
    reveal = IsHidden(edit); // the style counts, whoever has changed it
    SetFocus(edit);
    if (!IsWindow(edit)) return;
    SendMessageW(edit, EM_SETPASSWORDCHAR, reveal ? 0 : kPasswordCharacter, 0);
    SetWindowPos(edit, nullptr, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
    InvalidateRect(edit, nullptr, TRUE);
    RepaintEye();
    SetFocus(GetParent(edit));
    if (IsWindow(edit)) ReportState();
}

// To screen readers: the eye is pressed or isn't, the text of the edit is protected or isn't.
void ObFlatPassword::ReportState() const {
    for (const HWND changed : {eyeButton, window}) {
        if (changed == nullptr) continue;
        NotifyWinEvent(EVENT_OBJECT_STATECHANGE, changed, OBJID_CLIENT, CHILDID_SELF);
    }
}

// Without a window the system would take the focus from the thread.
void ObFlatPassword::FocusAtEnd() {
    const HWND edit = window;
    if (edit == nullptr) return;
    const int end = GetWindowTextLengthW(edit);
    SetFocus(edit);
    SendMessageW(edit, EM_SETSEL, static_cast<WPARAM>(end), end);
}

// ---- the eye

LRESULT CALLBACK ObFlatPassword::EyeProcedure(HWND eye, UINT message, WPARAM wParam, LPARAM lParam,
                                              UINT_PTR, DWORD_PTR object) {
    auto* const password = reinterpret_cast<ObFlatPassword*>(object);
    if (message == WM_NCDESTROY) {
        password->accessible_.End();
        password->eyeButton = nullptr;
        RemoveSubclass(eye, &ObFlatPassword::EyeProcedure, password);
        return CallNextSubclass(eye, message, wParam, lParam);
    }
    LRESULT result = 0;
    const bool isDone = password->window != nullptr && ObLib::Guarded(false, [&] {
                            return password->OnEyeMessage(message, wParam, lParam, result);
                        });
    return isDone ? result : CallNextSubclass(eye, message, wParam, lParam);
}

// True: the button isn't told. It would paint itself, take the focus and notify the dialog.
bool ObFlatPassword::OnEyeMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    switch (message) {
    case WM_PAINT:
        PaintEye();
        return true;
    case WM_PRINTCLIENT:
        DrawEye(reinterpret_cast<HDC>(wParam));
        return true;
    case WM_ERASEBKGND:
        result = TRUE;
        return true;
    case WM_LBUTTONDOWN:
        OnLeftButtonDown(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam));
        return true;
    case WM_LBUTTONDBLCLK:
        focusAfterPaint = true;
        RepaintEye();
        return true;
    case WM_SETTEXT: // a button paints itself; this only keeps the text
        result = DefWindowProcW(eyeButton, message, wParam, lParam);
        RepaintEye();
        return true;
    case BM_SETCHECK:
    case BM_SETSTATE:
    case BM_SETSTYLE:
    case WM_ENABLE:
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        RepaintEye();
        return true;
    case WM_MOUSEMOVE:
        AddEyeTip();
        return false;
    case WM_GETOBJECT:
        result = accessible_.OnGetObject(eyeButton, wParam, lParam, *this);
        return result != 0;
    }
    return false;
}

void ObFlatPassword::OnLeftButtonDown(int, int) {
    const HWND edit = window;
    Toggle();
    if (IsWindow(edit)) focusAfterPaint = true;
}

void ObFlatPassword::AddEyeTip() {
    if (tooltipWindow == nullptr || SendMessageW(tooltipWindow, TTM_GETTOOLCOUNT, 0, 0) != 0) {
        return;
    }
    tipText_ = ObLib::ObString(kTextEyeTip);
    AddTool(tooltipWindow, eyeButton, tipText_.CStr());
}

PixelRect ObFlatPassword::EyeArea() const {
    const bool isShown =
        eyeButton != nullptr && (GetWindowLongPtrW(eyeButton, GWL_STYLE) & WS_VISIBLE) != 0;
    return isShown ? RectInParent(eyeButton) : PixelRect();
}

void ObFlatPassword::RepaintEye() {
    if (eyeButton != nullptr) InvalidateRect(eyeButton, nullptr, FALSE);
}

void ObFlatPassword::PaintEye() {
    {
        const PaintDc paint(eyeButton);
        if (paint.Get() != nullptr) DrawEye(paint.Get());
    }
    if (!focusAfterPaint) return;
    focusAfterPaint = false;
    FocusAtEnd();
}

void ObFlatPassword::DrawEye(HDC dc) {
    const OffscreenPaint paint(eyeButton, dc);
    if (!paint) return;
    FillAsEdit(paint.Dc(), AsRect(paint.Area()));
    reveal = !IsHidden(window);
    if (IsWindowEnabled(window)) {
        images = ImageSet(ImageList(reveal ? ControlImage::EyeVisible : ControlImage::EyeHidden));
        eye_ = LoadSharedImage(GetImageId(images, 0, GetDeviceCaps(dc, LOGPIXELSX)));
        if (eye_) DrawInMiddle(paint, *eye_);
    }
    paint.Show();
}

void ObFlatPassword::DrawInMiddle(const OffscreenPaint& paint, const SharedImage& image) {
    const SIZE size = image.Size();
    DrawImage(paint.Dc(), image.Bitmap(), (paint.Area().Width() - size.cx) / 2,
              (paint.Area().Height() - size.cy) / 2);
}

// ---- what screen readers get

ObLib::ObString ObFlatPassword::AccessibleShortcut() { return L"Alt+F8"; }

ObLib::ObString ObFlatPassword::AccessibleName() { return ObLib::ObString(kTextEyeName); }

LONG ObFlatPassword::AccessibleRole() { return ROLE_SYSTEM_PUSHBUTTON; }

LONG ObFlatPassword::AccessibleState() {
    if (window == nullptr || !IsWindowEnabled(window)) return STATE_SYSTEM_UNAVAILABLE;
    return IsHidden(window) ? 0 : STATE_SYSTEM_PRESSED;
}

void ObFlatPassword::DoAccessibleAction() {
    if (window == nullptr || !IsWindowEnabled(window)) return;
    OnLeftButtonDown(0, 0);
}

} // namespace ObLibX
