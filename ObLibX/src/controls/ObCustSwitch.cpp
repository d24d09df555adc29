#include "ObLibX/src/controls/ObCustSwitch.h"

#include <oleacc.h>
#include <windowsx.h>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLibX/src/controls/ControlText.h"
#include "ObLibX/src/controls/LabelBefore.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/controls/SwitchLayout.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/dialog/ToolkitTexts.h"
#include "ObLibX/src/dialog/WindowSubclass.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

constexpr RECT kSizeInUnits{0, 0, 44, 8}; // of the dialog
constexpr int kMargin = 2;                // at 96 dpi
constexpr int kFrameWidth = 2;            // pixels, at every scale
constexpr int kNoMouse = -1;

constexpr COLORREF kDraggedTrack = 0xFF8080;
constexpr COLORREF kDisabledTrack = 0xE0E0E0;
constexpr COLORREF kDisabledThumb = 0xA6A6A6;
constexpr COLORREF kColorBits = 0xFFFFFF;

} // namespace

struct ObFlatToggleBtn::Colors {
    COLORREF background;
    COLORREF frame;
    COLORREF thumb;
    COLORREF track;
};

ObFlatToggleBtn::ObFlatToggleBtn(std::int32_t switchId)
    : ObFlatToggleBase(switchId, ButtonClass::Switch) {}

ObFlatToggleBtn::~ObFlatToggleBtn() {
    if (window == nullptr) return;
    RemoveSubclass(window, &ObFlatToggleBtn::SwitchProcedure, this);
}

void ObFlatToggleBtn::Attach(HWND attached) {
    ObFlatToggleBase::Attach(attached);
    lastMouseX = kNoMouse;
    isSpaceDown_ = false;
    RECT size = kSizeInUnits;
    MapDialogRect(GetParent(window), &size);
    const int grown = 2 * Scale(kMargin);
    SetWindowPos(window, nullptr, 0, 0, size.right + grown, size.bottom + grown,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    ShowState(IsOn());
}

void ObFlatToggleBtn::ShowState(bool isOn) {
    SetWindowTextW(window, ObLib::ObString(isOn ? kTextSwitchOn : kTextSwitchOff).CStr());
}

void ObFlatToggleBtn::OnSetCheck(bool isChecked) { ShowState(isChecked); }

// Moves the thumb under the mouse.
void ObFlatToggleBtn::OnMouseMove(int x, int) {
    const int before = lastMouseX == kNoMouse ? pressedX_ : lastMouseX;
    Arrange();
    if (!isDown || x == before || x < trackRectangle.left || x >= trackRectangle.right) return;
    lastMouseX = x;
    Arrange();
    Repaint();
}

// A click that isn't dragged changes the state, wherever it is. The capture is taken first: a
// dialog may show a message box, or end, as another control loses the focus. The press then ends
// with the capture, or by the button's release.
void ObFlatToggleBtn::OnLeftButtonDown(int x, int) {
    const HWND pressed = window;
    isDown = true;
    pressedX_ = x;
    newState = !IsOn();
    SetCapture(pressed);
    SetFocus(pressed);
    if (IsWindow(pressed) && isDown) Repaint();
}

void ObFlatToggleBtn::OnLeftButtonUp(int, int) {
    if (!isDown) return;
    const bool isOn = newState;
    LetGo();
    Change(isOn);
}

// Without a change. Not down any more before the capture is lost, which would end a press, too.
void ObFlatToggleBtn::LetGo() {
    isDown = false;
    lastMouseX = kNoMouse;
    if (GetCapture() == window) ReleaseCapture();
    Repaint();
}

// A screen reader asks for it whether the switch is disabled or not. The dialog may destroy the
// window while it is notified.
void ObFlatToggleBtn::Change(bool isOn) {
    if (isOn == IsOn() || !IsEnabled()) return;
    const HWND parent = GetParent(window);
    const int control = GetDlgCtrlID(window);
    CheckDlgButton(parent, control, isOn ? BST_CHECKED : BST_UNCHECKED);
    SendMessageW(parent, WM_COMMAND, MAKEWPARAM(control, BN_CLICKED),
                 reinterpret_cast<LPARAM>(window));
}

void ObFlatToggleBtn::OnKey(bool isPressed) {
    const bool isClick = isSpaceDown_ && !isPressed && !isDown;
    isSpaceDown_ = isPressed;
    if (isClick) Change(!IsOn());
}

bool ObFlatToggleBtn::Take(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_MOUSEMOVE:
        OnMouseMove(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam));
        return true;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
        OnLeftButtonDown(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam));
        return true;
    case WM_LBUTTONUP:
        OnLeftButtonUp(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam));
        return true;
    case WM_CAPTURECHANGED:
        if (isDown) LetGo();
        return true;
    case WM_MOUSELEAVE:
        return true;
    case WM_KEYDOWN:
    case WM_KEYUP:
        if (wParam != VK_SPACE) return false;
        OnKey(message == WM_KEYDOWN);
        return true;
    case BM_CLICK:
        Change(!IsOn());
        return true;
    default:
        return false;
    }
}

// What the stock check box paints by itself is painted over at once.
void ObFlatToggleBtn::TakeAfter(UINT message, WPARAM wParam) {
    switch (message) {
    case BM_SETCHECK: // a box of two states takes any other value than 0 for checked
        OnSetCheck(IsOn());
        break;
    case WM_KILLFOCUS:
        isSpaceDown_ = false;
        break;
    case WM_ENABLE:
        if (wParam != FALSE) break;
        isSpaceDown_ = false;
        if (isDown) LetGo();
        break;
    case WM_SETFOCUS:
    case WM_SETTEXT:
    case WM_UPDATEUISTATE:
    case BM_SETSTATE:
    case BM_SETSTYLE:
        break;
    default:
        return;
    }
    Repaint();
}

LRESULT CALLBACK ObFlatToggleBtn::SwitchProcedure(HWND window, UINT message, WPARAM wParam,
                                                  LPARAM lParam, UINT_PTR, DWORD_PTR object) {
    auto& control = *reinterpret_cast<ObFlatToggleBtn*>(object);
    if (message == WM_NCDESTROY) {
        control.accessible_.End();
        RemoveSubclass(window, &ObFlatToggleBtn::SwitchProcedure, &control);
        return CallNextSubclass(window, message, wParam, lParam);
    }
    if (message == WM_GETOBJECT) {
        const LRESULT own = ObLib::Guarded(LRESULT{0}, [&] {
            return control.accessible_.OnGetObject(window, wParam, lParam, control);
        });
        if (own != 0) return own;
    }
    if (PaintedByMessage(control, message, wParam)) return 1;
    if (ObLib::Guarded(true, [&] { return control.Take(message, wParam, lParam); })) return 0;
    const LRESULT result = CallNextSubclass(window, message, wParam, lParam);
    if (IsWindow(window)) {
        static_cast<void>(ObLib::RanGuarded([&] { control.TakeAfter(message, wParam); }));
    }
    return result;
}

// The thumb, and while it is dragged the state that it would set.
void ObFlatToggleBtn::Arrange() {
    const SwitchAreas areas = SwitchAreasOf(ClientArea(window), Scale(kMargin));
    layoutRectangle = areas.text;
    trackRectangle = areas.track;
    const bool isDragged = lastMouseX != kNoMouse;
    thumbRectangle =
        isDragged ? DraggedThumb(trackRectangle, lastMouseX) : RestingThumb(trackRectangle, IsOn());
    if (isDragged) newState = IsThumbOn(trackRectangle, thumbRectangle);
}

ObFlatToggleBtn::Colors ObFlatToggleBtn::ColorsNow() {
    if (IsHighContrast()) {
        const COLORREF background = GetSysColor(COLOR_WINDOW);
        const COLORREF inverse = ~background & kColorBits;
        return {background, inverse, inverse, background};
    }
    const COLORREF background = GetFillColor();
    const COLORREF gray = GetPaletteColor(kPaletteGray);
    if (!IsEnabled()) return {background, gray, kDisabledThumb, kDisabledTrack};
    if (lastMouseX != kNoMouse) return {background, gray, gray, kDraggedTrack};
    return {background, gray, gray, IsOn() ? kAccentColor : background};
}

void ObFlatToggleBtn::Paint(HDC target) {
    const OffscreenPaint paint(window, target);
    if (!paint) return;
    Arrange();
    const Colors colors = ColorsNow();
    FillArea(paint.Dc(), paint.Area(), colors.background);
    FillArea(paint.Dc(), trackRectangle, colors.track);
    FrameArea(paint.Dc(), trackRectangle, colors.frame, kFrameWidth);
    FillArea(paint.Dc(), thumbRectangle, colors.thumb);
    const UINT hidden = HiddenCues(*this);
    PaintLabel(paint.Dc(), hidden);
    PaintFocus(paint.Dc(), hidden);
    paint.Show();
}

void ObFlatToggleBtn::PaintLabel(HDC dc, UINT hiddenCues) {
    const TextStyle style{IsEnabled() ? GetTextColor() : kDisabledTextColor, hiddenCues,
                          HorizontalPlace::Left, VerticalPlace::Centre, false};
    textRectangle = DrawControlText(*this, dc, TextOfControl(*this), layoutRectangle, style);
}

void ObFlatToggleBtn::ComputeFocusRectangle() { focusRectangle = ClientArea(window); }

// Without a label its own text is better than no name.
ObLib::ObString ObFlatToggleBtn::AccessibleName() {
    const ObLib::ObString label = LabelBefore(window);
    return label.HasText() ? label : TextOfControl(*this);
}

LONG ObFlatToggleBtn::AccessibleRole() { return ROLE_SYSTEM_CHECKBUTTON; }

LONG ObFlatToggleBtn::AccessibleState() { return IsOn() ? STATE_SYSTEM_CHECKED : 0; }

// Posted, as the dialog may show another one at the change.
void ObFlatToggleBtn::DoAccessibleAction() { PostMessageW(window, BM_CLICK, 0, 0); }

} // namespace ObLibX
