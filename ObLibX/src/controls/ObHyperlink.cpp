#include "ObLibX/src/controls/ObHyperlink.h"

#include <oleacc.h>

#include <utility>

#include "ObLib/Src/ObFatal.h"
#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/ScopeExit.h"
#include "ObLibX/src/controls/HelperWindow.h"
#include "ObLibX/src/controls/LabelBefore.h"
#include "ObLibX/src/controls/LinkFit.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/controls/TextMeasure.h"
#include "ObLibX/src/dialog/ObXDlg.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

constexpr wchar_t kModule[] = L"ObLibX\\src\\ObHyperlink.cpp";

// Of the link's window.
constexpr wchar_t kObjectProperty[] = L"_HYPERLINK_OBJECT_PTR_";
constexpr wchar_t kLinkProperty[] = L"_HYPERLINK_"; // its value is 1
// Of the link's window and of its dialog: the procedure that was replaced.
constexpr wchar_t kOldProcedureProperty[] = L"_HYPERLINK_OLD_WNDPROC";

constexpr LONG_PTR kLinkStyle = SS_NOTIFY | WS_TABSTOP;
constexpr std::int32_t kMeasureWidth = 5000; // pixels
constexpr LPARAM kIsRepeated = LPARAM{KF_REPEAT} << 16;

// ---- Procedures that are replaced

// What the property has: slow to read, as the system's server is asked.
WNDPROC ReadOldProcedure(HWND window) {
    return reinterpret_cast<WNDPROC>(GetPropW(window, kOldProcedureProperty));
}

LRESULT CallOld(WNDPROC old, HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return old != nullptr ? CallWindowProcW(old, window, message, wParam, lParam)
                          : DefWindowProcW(window, message, wParam, lParam);
}

// Once for each window. Returns what was replaced.
WNDPROC ReplaceProcedure(HWND window, WNDPROC procedure) {
    if (const WNDPROC replaced = ReadOldProcedure(window)) return replaced;
    const LONG_PTR old = GetWindowLongPtrW(window, GWLP_WNDPROC);
    ObAssert(SetPropW(window, kOldProcedureProperty, reinterpret_cast<HANDLE>(old)));
    SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(procedure));
    return reinterpret_cast<WNDPROC>(old);
}

// Where another procedure has replaced this one meanwhile, this one stays and only passes on.
void RestoreProcedure(HWND window, WNDPROC procedure) {
    const LONG_PTR now = GetWindowLongPtrW(window, GWLP_WNDPROC);
    if (now != reinterpret_cast<LONG_PTR>(procedure)) return;
    const HANDLE old = RemovePropW(window, kOldProcedureProperty);
    if (old != nullptr) SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(old));
}

// The last message of a window that still has the procedure.
LRESULT EndProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto old = reinterpret_cast<WNDPROC>(RemovePropW(window, kOldProcedureProperty));
    return CallOld(old, window, message, wParam, lParam);
}

// ---- The window's text and font

HFONT SystemFont() { return static_cast<HFONT>(GetStockObject(SYSTEM_FONT)); }

HFONT FontOf(HWND window) {
    return reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0));
}

ObLib::UniqueFont UnderlinedCopy(HFONT font) {
    LOGFONTW traits{};
    if (GetObjectW(font != nullptr ? font : SystemFont(), sizeof traits, &traits) == 0) return {};
    traits.lfUnderline = TRUE;
    return ObLib::UniqueFont(CreateFontIndirectW(&traits));
}

TextSize LineSize(HFONT font, const ObLib::ObString& text) {
    const ObLib::UniqueMemoryDc dc(CreateCompatibleDC(nullptr));
    const HGDIOBJ old = SelectObject(dc.Get(), font);
    SIZE size{};
    GetTextExtentPoint32W(dc.Get(), text.CStr(), lstrlenW(text.CStr()), &size);
    SelectObject(dc.Get(), old);
    return {size.cx, size.cy};
}

LinkAlignment AlignmentOf(HWND window) {
    switch (GetWindowLongPtrW(window, GWL_STYLE) & SS_TYPEMASK) {
    case SS_CENTER:
        return LinkAlignment::Centre;
    case SS_RIGHT:
        return LinkAlignment::Right;
    default:
        return LinkAlignment::Left;
    }
}

bool IsShown(HWND window) { return (GetWindowLongPtrW(window, GWL_STYLE) & WS_VISIBLE) != 0; }

// ---- Messages

// The link that a child of the dialog is; null for any other window.
ObHyperlinkCtrl* LinkOn(HWND dialog, HWND child) {
    if (child == nullptr || GetParent(child) != dialog) return nullptr;
    return static_cast<ObHyperlinkCtrl*>(GetPropW(child, kObjectProperty));
}

bool IsClickKey(WPARAM key) { return key == VK_SPACE || key == VK_RETURN; }

// Enter comes to the link and not to the dialog's default button.
LRESULT DialogCode(WPARAM key) {
    return key == VK_RETURN ? DLGC_BUTTON | DLGC_WANTMESSAGE : DLGC_WANTCHARS;
}

void InvalidateEdges(HWND window, const PixelRect& rect) {
    for (const PixelRect& edge : EdgesOf(rect)) {
        const RECT area = AsRect(edge);
        if (!edge.IsEmpty()) InvalidateRect(window, &area, TRUE);
    }
}

} // namespace

ObHyperlinkCtrl::ObHyperlinkCtrl(std::int32_t linkId, ObXDlg* boundTo)
    : id(linkId), handler(boundTo) {}

ObHyperlinkCtrl::~ObHyperlinkCtrl() { Detach(); }

// ---- Attaching

void ObHyperlinkCtrl::Attach(HWND dialog) {
    if (attached) return;
    ObAssert(IsWindow(dialog));
    const HWND control = GetDlgItem(dialog, id);
    ObAssert(control != nullptr);
    ObAssert(GetPropW(control, kLinkProperty) == nullptr);
    attached = true;
    dialogWindow = dialog;
    window = control;
    room_ = fitted_ = RectInParent(window);
    TakeWindow();
    ReplaceProcedure(dialogWindow, &ObHyperlinkCtrl::DialogProcedure);
    OnSetFont(FontOf(window), MAKELPARAM(TRUE, 0));
    ShowFocus(GetFocus() == window);
}

void ObHyperlinkCtrl::TakeWindow() {
    const LONG_PTR style = GetWindowLongPtrW(window, GWL_STYLE);
    addedStyle_ = kLinkStyle & ~style;
    SetWindowLongPtrW(window, GWL_STYLE, style | kLinkStyle);
    oldUserData_ = SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    ObAssert(SetPropW(window, kObjectProperty, this));
    ObAssert(SetPropW(window, kLinkProperty, reinterpret_cast<HANDLE>(INT_PTR{1})));
    oldProcedure_ = ReplaceProcedure(window, &ObHyperlinkCtrl::ControlProcedure);
}

void ObHyperlinkCtrl::Detach() {
    if (!attached) return;
    attached = false;
    accessible_.End();
    InvalidateEdges(dialogWindow, std::exchange(focus_, PixelRect()));
    if (IsWindow(window)) GiveWindowBack();
    if (IsWindow(dialogWindow)) GiveDialogBack();
    underlineFont.Reset();
    oldFont = nullptr;
    window = nullptr;
    dialogWindow = nullptr;
    hasFocus_ = false;
}

void ObHyperlinkCtrl::GiveWindowBack() {
    const LONG_PTR style = GetWindowLongPtrW(window, GWL_STYLE);
    SetWindowLongPtrW(window, GWL_STYLE, style & ~addedStyle_);
    SetWindowLongPtrW(window, GWLP_USERDATA, oldUserData_);
    RemovePropW(window, kObjectProperty);
    RemovePropW(window, kLinkProperty);
    RestoreProcedure(window, &ObHyperlinkCtrl::ControlProcedure);
    SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(oldFont), MAKELPARAM(TRUE, 0));
}

// With the last of its links.
void ObHyperlinkCtrl::GiveDialogBack() {
    if (CountWithProperty(dialogWindow, kLinkProperty) != 0) return;
    RestoreProcedure(dialogWindow, &ObHyperlinkCtrl::DialogProcedure);
}

// ---- The window's messages

LRESULT CALLBACK ObHyperlinkCtrl::ControlProcedure(HWND window, UINT message, WPARAM wParam,
                                                   LPARAM lParam) {
    if (ObHyperlinkCtrl* const link = LinkOn(GetParent(window), window)) {
        return ObLib::Guarded(LRESULT{0},
                              [&] { return link->WindowProc(message, wParam, lParam); });
    }
    if (message == WM_NCDESTROY) return EndProcedure(window, message, wParam, lParam);
    return CallOld(ReadOldProcedure(window), window, message, wParam, lParam);
}

LRESULT ObHyperlinkCtrl::ToWindow(UINT message, WPARAM wParam, LPARAM lParam) {
    return CallOld(oldProcedure_, window, message, wParam, lParam);
}

LRESULT ObHyperlinkCtrl::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SETCURSOR:
        SetCursor(LoadCursorW(nullptr, IDC_HAND));
        return TRUE;
    case WM_GETDLGCODE:
        return DialogCode(wParam);
    case WM_KEYDOWN:
        if (!IsClickKey(wParam)) break;
        if ((lParam & kIsRepeated) == 0) OnClick();
        return 0;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        return OnFocus(message, wParam, lParam);
    case WM_WINDOWPOSCHANGED:
        return OnMoved(wParam, lParam);
    case WM_SETTEXT:
        return OnSetText(wParam, lParam);
    case WM_SETFONT:
        return OnSetFont(reinterpret_cast<HFONT>(wParam), lParam);
    case BM_CLICK:
        if (IsWindowEnabled(window)) OnClick();
        return 0;
    case WM_GETOBJECT:
        if (const LRESULT own = accessible_.OnGetObject(window, wParam, lParam, *this)) return own;
        break;
    case WM_DESTROY:
        return OnDestroy(wParam, lParam);
    default:
        break;
    }
    return ToWindow(message, wParam, lParam);
}

LRESULT ObHyperlinkCtrl::OnDestroy(WPARAM wParam, LPARAM lParam) {
    const HWND ended = window;
    const WNDPROC old = oldProcedure_;
    Detach();
    return CallOld(old, ended, WM_DESTROY, wParam, lParam);
}

// The dialog may destroy itself, and the object, in the paint that shows the focus.
LRESULT ObHyperlinkCtrl::OnFocus(UINT message, WPARAM wParam, LPARAM lParam) {
    const LRESULT result = ToWindow(message, wParam, lParam);
    ShowFocus(message == WM_SETFOCUS);
    return result;
}

LRESULT ObHyperlinkCtrl::OnMoved(WPARAM wParam, LPARAM lParam) {
    const LRESULT result = ToWindow(WM_WINDOWPOSCHANGED, wParam, lParam);
    PlaceFocus();
    return result;
}

// A dressed label fits the text, too: it gets the whole room for that, and its font only counts
// again when the link has gone. Nobody else has the dialog paint what the old text leaves.
LRESULT ObHyperlinkCtrl::OnSetText(WPARAM wParam, LPARAM lParam) {
    NoteMove();
    const HWND dialog = dialogWindow;
    const RECT old = AsRect(fitted_);
    SetWindowPos(window, nullptr, room_.left, room_.top, room_.Width(), room_.Height(),
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOREDRAW);
    isTextChanging_ = true;
    const ObLib::ScopeExit lower([&] { isTextChanging_ = false; });
    const LRESULT result = ToWindow(WM_SETTEXT, wParam, lParam);
    Fit();
    InvalidateRect(dialog, &old, TRUE);
    return result;
}

LRESULT ObHyperlinkCtrl::OnSetFont(HFONT font, LPARAM lParam) {
    oldFont = font;
    if (isTextChanging_) return 0;
    NoteMove();
    ObLib::UniqueFont underlined = UnderlinedCopy(font);
    std::swap(underlineFont, underlined); // the one before goes when the window has this one
    ToWindow(WM_SETFONT, reinterpret_cast<WPARAM>(Font()), lParam);
    Fit();
    return 0;
}

HFONT ObHyperlinkCtrl::Font() const {
    if (underlineFont) return underlineFont.Get();
    return oldFont != nullptr ? oldFont : SystemFont();
}

// Where the window isn't where it was fitted, the dialog has moved it.
void ObHyperlinkCtrl::NoteMove() {
    const PixelRect now = RectInParent(window);
    if (now != fitted_) room_ = fitted_ = now;
}

// Wherever a label's growth has left the window, the room is the one from before.
void ObHyperlinkCtrl::Fit() {
    if (!attached) return;
    const PixelRect fit = FitLink(room_, LineSize(Font(), WindowText(window)), AlignmentOf(window));
    if (fit != RectInParent(window)) MoveChild(window, fit);
    fitted_ = RectInParent(window);
    InvalidateRect(window, nullptr, TRUE);
}

void ObHyperlinkCtrl::FitToText() {
    if (!attached) return;
    NoteMove();
    Fit();
}

void ObHyperlinkCtrl::OnClick() {
    if (handler != nullptr) handler->OnCommandId(id, STN_CLICKED, window);
}

// ---- The focus, which the dialog paints around the window

// The dialog paints at once: what is below the old place, and the focus in the new one. It may
// destroy itself in that, so this is the last step of its callers.
void ObHyperlinkCtrl::ShowFocus(bool hasFocus) {
    hasFocus_ = hasFocus;
    PlaceFocus();
    UpdateWindow(dialogWindow);
}

void ObHyperlinkCtrl::PlaceFocus() {
    PixelRect place;
    if (hasFocus_ && IsShown(window)) {
        const TextSize text =
            MeasureTextIn(Font(), WindowText(window), kMeasureWidth, DT_WORDBREAK);
        place = LinkFocus(RectInParent(window), text.height);
    }
    if (place == focus_) return;
    InvalidateEdges(dialogWindow, std::exchange(focus_, place));
    InvalidateEdges(dialogWindow, focus_);
}

// A focus rectangle inverts what it is painted on, so the dialog has to paint all of that first.
bool ObHyperlinkCtrl::WillPaintFocus() const {
    RECT invalid{};
    if (focus_.IsEmpty() || !GetUpdateRect(dialogWindow, &invalid, FALSE)) return false;
    const RECT place = AsRect(focus_);
    RECT both{};
    if (!IntersectRect(&both, &place, &invalid)) return false;
    InvalidateEdges(dialogWindow, focus_);
    return true;
}

void ObHyperlinkCtrl::DrawFocus() const {
    const ClientDc dc(dialogWindow);
    const RECT place = AsRect(focus_);
    DrawFocusRect(dc.Get(), &place);
}

// ---- The dialog's messages

LRESULT ObHyperlinkCtrl::OnDialogPaint(HWND dialog, WPARAM wParam, LPARAM lParam) {
    const ObHyperlinkCtrl* const before = LinkOn(dialog, GetFocus());
    const bool isPainted = before != nullptr && before->WillPaintFocus();
    const LRESULT result = CallOld(ReadOldProcedure(dialog), dialog, WM_PAINT, wParam, lParam);
    const ObHyperlinkCtrl* const after = LinkOn(dialog, GetFocus());
    if (isPainted && after != nullptr) after->DrawFocus();
    return result;
}

LRESULT ObHyperlinkCtrl::OnDialogDestroy(HWND dialog, WPARAM wParam, LPARAM lParam) {
    const WNDPROC old = ReadOldProcedure(dialog);
    RestoreProcedure(dialog, &ObHyperlinkCtrl::DialogProcedure);
    return CallOld(old, dialog, WM_DESTROY, wParam, lParam);
}

// A double click has been a click before; what else the window notifies of is no click.
LRESULT ObHyperlinkCtrl::OnDialogCommand(WPARAM wParam) {
    if (HIWORD(wParam) == STN_CLICKED) OnClick();
    return 0;
}

LRESULT ObHyperlinkCtrl::OnDialogMessage(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    ObHyperlinkCtrl* const link = LinkOn(dialog, reinterpret_cast<HWND>(lParam));
    if (message == WM_COMMAND && link != nullptr) return link->OnDialogCommand(wParam);
    const LRESULT result = CallOld(ReadOldProcedure(dialog), dialog, message, wParam, lParam);
    if (message != WM_CTLCOLORSTATIC || link == nullptr) return result;
    const auto brushOfDialog = reinterpret_cast<HBRUSH>(result);
    return reinterpret_cast<LRESULT>(
        link->OnCtlColor(reinterpret_cast<HDC>(wParam), brushOfDialog));
}

LRESULT CALLBACK ObHyperlinkCtrl::DialogProcedure(HWND window, UINT message, WPARAM wParam,
                                                  LPARAM lParam) {
    return ObLib::Guarded(LRESULT{0}, [&] {
        switch (message) {
        case WM_COMMAND:
        case WM_CTLCOLORSTATIC:
            return OnDialogMessage(window, message, wParam, lParam);
        case WM_PAINT:
            return OnDialogPaint(window, wParam, lParam);
        case WM_DESTROY:
            return OnDialogDestroy(window, wParam, lParam);
        case WM_NCDESTROY:
            return EndProcedure(window, message, wParam, lParam);
        default:
            return CallOld(ReadOldProcedure(window), window, message, wParam, lParam);
        }
    });
}

// A disabled link has the colour of the dialog's other disabled texts.
HBRUSH ObHyperlinkCtrl::OnCtlColor(HDC dc, HBRUSH ofDialog) {
    const bool isContrast = IsHighContrast();
    if (IsWindowEnabled(window)) {
        ::SetTextColor(dc, isContrast ? GetSysColor(COLOR_HOTLIGHT) : textColor);
    }
    if (!brush || isContrast) return ofDialog;
    SetBkColor(dc, backgroundColor);
    return brush.Get();
}

void ObHyperlinkCtrl::SetBackgroundColor(COLORREF color) {
    backgroundColor = color;
    brush.Reset(CreateSolidBrush(color));
    if (attached) InvalidateRect(window, nullptr, TRUE);
}

// ---- What screen readers get

ObLib::ObString ObHyperlinkCtrl::AccessibleName() { return LabelText(window); }

LONG ObHyperlinkCtrl::AccessibleRole() { return ROLE_SYSTEM_LINK; }

LONG ObHyperlinkCtrl::AccessibleState() { return STATE_SYSTEM_LINKED; }

bool ObHyperlinkCtrl::HasAccessibleAction() { return IsWindowEnabled(window) != FALSE; }

// Posted, as the dialog may show another one at the click; to the link's own window, so that a
// click that waits goes with it.
void ObHyperlinkCtrl::DoAccessibleAction() { PostMessageW(window, BM_CLICK, 0, 0); }

} // namespace ObLibX
