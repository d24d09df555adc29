#include "ObLibX/src/controls/ObCustEdit.h"

#include <commctrl.h>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLibX/src/controls/CachedBrush.h"
#include "ObLibX/src/controls/ControlText.h"
#include "ObLibX/src/controls/HelperWindow.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/controls/TextMeasure.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/dialog/WindowSubclass.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

// Of a line. Its height is that of the font, so what the edit contains needn't be read: it may be a
// password. An edit of several lines keeps the height that its window has.
constexpr wchar_t kLine[] = L"Aq";

// One brush for all edits, of the colour that was asked for last.
HBRUSH EditFillBrush(COLORREF color) {
    static CachedBrush brush;
    return brush.Get(color);
}

bool HasStyle(HWND window, LONG_PTR style) {
    return (GetWindowLongPtrW(window, GWL_STYLE) & style) != 0;
}

void TakeStyleOff(HWND window, int index, LONG_PTR style) {
    const LONG_PTR old = GetWindowLongPtrW(window, index);
    if ((old & style) != 0) SetWindowLongPtrW(window, index, old & ~style);
}

// To be seen once the window has been given its place.
void TakeBorderOff(HWND window) {
    TakeStyleOff(window, GWL_STYLE, WS_BORDER);
    TakeStyleOff(window, GWL_EXSTYLE, WS_EX_CLIENTEDGE);
}

void MoveWithNewBorder(HWND window, const PixelRect& rect) {
    SetWindowPos(window, nullptr, rect.left, rect.top, rect.Width(), rect.Height(),
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
}

} // namespace

ObFlatEdit::ObFlatEdit(std::int32_t controlId, const ObLib::ObString& cue)
    : ObCustomControl(controlId, nullptr, ObLib::ObString(), 0), cueText(cue) {}

// Windows that outlive their object go on as stock ones.
ObFlatEdit::~ObFlatEdit() {
    RemoveSubclass(window, &ObFlatEdit::Procedure, this);
    if (window != nullptr) RemovePropW(window, kEditProperty);
    RemoveSubclass(frameWindow, &ObFlatEdit::FrameProcedure, this);
    if (spinControl != nullptr) spinControl->OnEditGone();
}

void ObFlatEdit::Attach(HWND attached) {
    TakeBorderOff(attached);
    ObCustomControl::Attach(attached);
    if (cueText.HasText()) {
        SendMessageW(window, EM_SETCUEBANNER, TRUE, reinterpret_cast<LPARAM>(cueText.CStr()));
    }
    ObCustomControl::OnFontChanged();
    Place();
    MakeFrame();
    MoveWithNewBorder(window, editRectangle);
    SetPropW(window, kEditProperty, this);
    AddSubclass(window, &ObFlatEdit::Procedure, this);
}

void ObFlatEdit::Place() {
    const EditPlaces places = PlaceEdit(RectInParent(window), Measures());
    editRectangle = places.editRectangle;
    frameRectangle = places.frameRectangle;
    minimumHeight = places.minimumHeight;
    eyeWidth_ = places.eyeWidth;
}

EditMeasures ObFlatEdit::Measures() const {
    const TextSize line = MeasureTextIn(GetControlFont(), kLine, 0, DT_SINGLELINE);
    return {line.height, frameWidth, HasStyle(window, ES_MULTILINE), HasEye()};
}

void ObFlatEdit::MakeFrame() {
    HelperTraits traits;
    traits.className = L"static";
    // It must not paint over the edit, which is above it. As a group of its own it ends the last
    // one of the template: arrow keys stay there.
    traits.style = WS_DISABLED | WS_CLIPSIBLINGS | WS_GROUP;
    wasShown_ = IsShown();
    if (!hideFrame && wasShown_) traits.style |= WS_VISIBLE;
    traits.property = kEditFrameProperty;
    frameWindow = MakeHelperWindow(GetParent(window), frameRectangle, traits);
    if (frameWindow == nullptr) return;
    AddSubclass(frameWindow, &ObFlatEdit::FrameProcedure, this);
}

LRESULT CALLBACK ObFlatEdit::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                       UINT_PTR, DWORD_PTR object) {
    auto* const edit = reinterpret_cast<ObFlatEdit*>(object);
    if (message == WM_NCDESTROY) {
        RemovePropW(window, kEditProperty);
        if (edit->spinControl != nullptr) edit->spinControl->OnEditGone();
        edit->spinControl = nullptr;
        if (edit->frameWindow != nullptr) DestroyWindow(edit->frameWindow);
        RemoveSubclass(window, &ObFlatEdit::Procedure, edit);
        return CallNextSubclass(window, message, wParam, lParam);
    }
    // The edit notifies the dialog, which may destroy the window and then the object.
    const LRESULT result = CallNextSubclass(window, message, wParam, lParam);
    if (!IsWindow(window)) return result;
    static_cast<void>(ObLib::RanGuarded([&] { edit->OnHandled(message, wParam, lParam); }));
    return result;
}

void ObFlatEdit::OnHandled(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_MOVE:
    case WM_SIZE:
        OnLayoutChanged();
        break;
    case WM_SHOWWINDOW:
        OnShow(wParam != FALSE);
        break;
    case WM_WINDOWPOSCHANGED:
        OnPosChanged(*reinterpret_cast<const WINDOWPOS*>(lParam));
        break;
    case WM_SETREDRAW: // shows a window that was hidden, without another message
        if (wParam != FALSE && IsShown() != wasShown_) OnShow(IsShown());
        break;
    case EM_SETREADONLY:
    case WM_ENABLE:
        Refresh();
        break;
    }
}

// SetWindowPos shows and hides without WM_SHOWWINDOW; ShowWindow does it by both messages.
void ObFlatEdit::OnPosChanged(const WINDOWPOS& pos) {
    if ((pos.flags & (SWP_SHOWWINDOW | SWP_HIDEWINDOW)) == 0) return;
    const bool isShown = (pos.flags & SWP_SHOWWINDOW) != 0;
    if (isShown != wasShown_) OnShow(isShown);
}

bool ObFlatEdit::IsShown() const { return HasStyle(window, WS_VISIBLE); }

void ObFlatEdit::OnLayoutChanged() {
    editRectangle = RectInParent(window);
    frameRectangle = FrameAround(editRectangle, frameWidth, minimumHeight, eyeWidth_);
    if (frameWindow != nullptr) {
        MoveChild(frameWindow, frameRectangle);
        InvalidateRect(frameWindow, nullptr, FALSE);
    }
    if (spinControl != nullptr) spinControl->FollowEdit(frameWindow, frameWidth);
}

void ObFlatEdit::OnShow(bool isShown) {
    wasShown_ = isShown;
    if (frameWindow != nullptr) {
        ShowWindow(frameWindow, isShown && !hideFrame ? SW_SHOWNA : SW_HIDE);
    }
    if (spinControl != nullptr) spinControl->OnEditShown(isShown);
}

// The edit keeps its middle.
void ObFlatEdit::OnFontChanged() {
    ObCustomControl::OnFontChanged();
    const EditMeasures measures = Measures();
    if (measures.isMultiLine) return;
    const std::int32_t needed = measures.textHeight + 2 * frameWidth + 1;
    minimumHeight = std::max(minimumHeight, needed);
    MoveChild(window, OfHeight(editRectangle, measures.textHeight + 1));
    Refresh();
}

// An edit fills what is beside its text at WM_ERASEBKGND only.
void ObFlatEdit::Refresh() {
    if (window == nullptr) return;
    InvalidateRect(window, nullptr, TRUE);
    if (frameWindow != nullptr) InvalidateRect(frameWindow, nullptr, FALSE);
}

HBRUSH ObFlatEdit::OnCtlColor(HDC dc, HWND control) {
    if (IsHighContrast()) return nullptr;
    const COLORREF fill = GetFillColor();
    ::SetTextColor(dc, IsWindowEnabled(control) ? GetTextColor() : kDisabledTextColor);
    SetBkColor(dc, fill);
    return EditFillBrush(fill);
}

// ---- the frame

LRESULT CALLBACK ObFlatEdit::FrameProcedure(HWND frame, UINT message, WPARAM wParam, LPARAM lParam,
                                            UINT_PTR, DWORD_PTR object) {
    auto* const edit = reinterpret_cast<ObFlatEdit*>(object);
    switch (message) {
    case WM_ERASEBKGND:
        return TRUE; // WM_PAINT paints all of it
    case WM_PAINT:
        static_cast<void>(ObLib::RanGuarded([&] { edit->PaintFrame(); }));
        return 0;
    case WM_PRINTCLIENT:
        static_cast<void>(ObLib::RanGuarded([&] {
            if (edit->window != nullptr) edit->DrawFrame(reinterpret_cast<HDC>(wParam));
        }));
        return 0;
    case WM_NCDESTROY:
        edit->frameWindow = nullptr;
        RemoveSubclass(frame, &ObFlatEdit::FrameProcedure, edit);
        break;
    }
    return CallNextSubclass(frame, message, wParam, lParam);
}

COLORREF ObFlatEdit::RingColor() const {
    if (!HasStyle(window, ES_READONLY) || keepFrameWhenReadOnly) {
        return GetPaletteColor(kPaletteFrame);
    }
    return IsHighContrast() ? GetSysColor(COLOR_WINDOW) : GetParentBackground(window);
}

void ObFlatEdit::PaintFrame() {
    const PaintDc paint(frameWindow);
    if (paint.Get() == nullptr || window == nullptr) return;
    // The eye is below the frame in the Z-order, where the system doesn't clip it.
    const PixelRect eye = EyeArea();
    const PixelRect frame = RectInParent(frameWindow);
    ExcludeClipRect(paint.Get(), eye.left - frame.left, eye.top - frame.top, eye.right - frame.left,
                    eye.bottom - frame.top);
    DrawFrame(paint.Get());
}

void ObFlatEdit::DrawFrame(HDC dc) {
    const OffscreenPaint bitmap(frameWindow, dc);
    if (!bitmap) return;
    FillAsEdit(bitmap.Dc(), AsRect(bitmap.Area()));
    FrameArea(bitmap.Dc(), bitmap.Area(), RingColor(), frameWidth);
    bitmap.Show();
}

// By the brush that the parent gives the edit.
void ObFlatEdit::FillAsEdit(HDC dc, const RECT& area) const {
    const bool isStatic = HasStyle(window, ES_READONLY | WS_DISABLED);
    const LRESULT brush =
        SendMessageW(GetParent(window), isStatic ? WM_CTLCOLORSTATIC : WM_CTLCOLOREDIT,
                     reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(window));
    FillRect(dc, &area, reinterpret_cast<HBRUSH>(brush));
}

} // namespace ObLibX
