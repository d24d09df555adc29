// The dialog procedure: finds the object of a window and calls the handler of each message.
#include <windowsx.h>

#include <algorithm>
#include <iterator>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/ScopeExit.h"
#include "ObLibX/src/dialog/ObXDlg.h"

namespace ObLibX {
namespace {

constexpr int kCommandOk = 1;
constexpr int kCommandCancel = 2;
constexpr int kCommandHelp = 9;
// Codes of notifications by which a property sheet and a common dialog ask for help.
constexpr UINT kNotifyHelp = static_cast<UINT>(-205);
constexpr UINT kNotifyHelpButton = static_cast<UINT>(-605);

struct Message {
    WPARAM wParam;
    LPARAM lParam;

    template <class Data>
    Data* As() const {
        return reinterpret_cast<Data*>(lParam);
    }
    HWND Control() const { return As<HWND__>(); }
    HDC Dc() const { return reinterpret_cast<HDC>(wParam); }
};

INT_PTR AsResult(HBRUSH brush) { return reinterpret_cast<INT_PTR>(brush); }

// Also stores the result in the dialog's message result, from which its sender gets it. A dialog
// may end, and its object with it, while it is notified.
INT_PTR Notify(ObXDlg& dialog, const Message& message) {
    auto* const header = message.As<NMHDR>();
    const HWND window = dialog.window;
    if (header->code == kNotifyHelp || header->code == kNotifyHelpButton) return dialog.OnHelp();
    LRESULT result = 0;
    if (!dialog.OnNotify(static_cast<int>(message.wParam), header, result)) return 0;
    if (IsWindow(window)) SetWindowLongPtrW(window, DWLP_MSGRESULT, result);
    return result;
}

INT_PTR Command(ObXDlg& dialog, const Message& message) {
    switch (LOWORD(message.wParam)) {
    case kCommandOk:
        return dialog.OnOK();
    case kCommandCancel:
        return dialog.OnCancel();
    case kCommandHelp:
        return dialog.OnHelp();
    default:
        return dialog.OnCommand(message.wParam, message.lParam);
    }
}

INT_PTR InitDialog(ObXDlg& dialog, const Message&) {
    dialog.inInitDialog = true;
    const ObLib::ScopeExit lower([&] { dialog.inInitDialog = false; });
    return dialog.OnInitDialog();
}

INT_PTR Moved(ObXDlg& dialog, const Message& message) {
    dialog.OnMove(GET_X_LPARAM(message.lParam), GET_Y_LPARAM(message.lParam));
    return FALSE;
}

// What the default procedure has returned is final: without this it would be called again by the
// dialog's own, with a handle that is closed by then.
INT_PTR Finished(HWND window, LRESULT result) {
    SetWindowLongPtrW(window, DWLP_MSGRESULT, result);
    return TRUE;
}

// What concerns no scroll area is a message like any other. The target of an area may delete the
// dialog's object.
INT_PTR Gesture(ObXDlg& dialog, const Message& message) {
    const HWND window = dialog.window;
    if (dialog.Scrolling().OnGesture(window, message.lParam)) return TRUE;
    return Finished(window, dialog.OnOtherMessage(WM_GESTURE, message.wParam, message.lParam));
}

INT_PTR GestureNotify(ObXDlg& dialog, const Message& message) {
    const HWND window = dialog.window;
    dialog.Scrolling().OnGestureNotify(window, message.lParam);
    return Finished(window,
                    dialog.OnOtherMessage(WM_GESTURENOTIFY, message.wParam, message.lParam));
}

INT_PTR Wheel(ObXDlg& dialog, const Message& message) {
    const bool isTaken =
        dialog.Scrolling().OnMouseWheel(dialog.window, message.wParam, message.lParam);
    return isTaken ? TRUE : dialog.OnOtherMessage(WM_MOUSEWHEEL, message.wParam, message.lParam);
}

INT_PTR Bar(ObXDlg& dialog, const Message& message) {
    const bool isTaken = dialog.Scrolling().OnScrollBar(message.wParam, message.lParam);
    return isTaken ? TRUE : dialog.OnOtherMessage(WM_VSCROLL, message.wParam, message.lParam);
}

struct Handler {
    UINT message;
    INT_PTR (*call)(ObXDlg& dialog, const Message& message);
};

using D = ObXDlg;
using M = Message;

constexpr Handler kHandlers[] = {
    {WM_INITDIALOG, &InitDialog},
    {WM_COMMAND, &Command},
    {WM_NOTIFY, &Notify},
    {WM_MOVE, &Moved},
    {WM_HELP, [](D& d, const M&) -> INT_PTR { return d.OnHelp(); }},
    {WM_CONTEXTMENU,
     [](D& d, const M& m) -> INT_PTR { return d.OnContextMenu(m.wParam, m.lParam); }},
    {WM_CLOSE, [](D& d, const M&) -> INT_PTR { return d.OnClose(); }},
    {WM_SIZE,
     [](D& d, const M& m) -> INT_PTR {
         return d.OnSize(m.wParam, LOWORD(m.lParam), HIWORD(m.lParam));
     }},
    {WM_GETMINMAXINFO,
     [](D& d, const M& m) -> INT_PTR { return d.OnGetMinMaxInfo(m.As<MINMAXINFO>()); }},
    {WM_MEASUREITEM,
     [](D& d, const M& m) -> INT_PTR {
         return d.OnMeasureItem(static_cast<int>(m.wParam), m.As<MEASUREITEMSTRUCT>());
     }},
    {WM_DRAWITEM,
     [](D& d, const M& m) -> INT_PTR {
         return d.OnDrawItem(static_cast<int>(m.wParam), m.As<DRAWITEMSTRUCT>());
     }},
    {WM_SIZING, [](D& d, const M& m) -> INT_PTR { return d.OnSizing(m.wParam, m.As<RECT>()); }},
    {WM_MOVING, [](D& d, const M& m) -> INT_PTR { return d.OnMoving(m.wParam, m.As<RECT>()); }},
    {WM_PAINT, [](D& d, const M&) -> INT_PTR { return d.OnPaint(); }},
    {WM_TIMER, [](D& d, const M& m) -> INT_PTR { return d.OnTimer(m.wParam); }},
    {WM_DESTROY, [](D& d, const M&) -> INT_PTR { return d.OnDestroy(); }},
    {WM_SYSCOMMAND, [](D& d, const M& m) -> INT_PTR { return d.OnSysCommand(m.wParam, m.lParam); }},
    {WM_SYSCOLORCHANGE, [](D& d, const M&) -> INT_PTR { return d.OnColorChange(); }},
    {WM_THEMECHANGED, [](D& d, const M&) -> INT_PTR { return d.OnColorChange(); }},
    {WM_CTLCOLORDLG, [](D& d, const M&) { return AsResult(d.OnCtlColorDlg()); }},
    {WM_CTLCOLORSTATIC,
     [](D& d, const M& m) { return AsResult(d.OnCtlColorStatic(m.Control(), m.Dc())); }},
    {WM_CTLCOLORBTN,
     [](D& d, const M& m) { return AsResult(d.OnCtlColorBtn(m.Control(), m.Dc())); }},
    {WM_CTLCOLOREDIT,
     [](D& d, const M& m) { return AsResult(d.OnCtlColorEdit(m.Control(), m.Dc())); }},
    {WM_UPDATEUISTATE,
     [](D& d, const M& m) -> INT_PTR {
         return d.OnUpdateUIState(LOWORD(m.wParam), HIWORD(m.wParam));
     }},
    {WM_MOUSEWHEEL, &Wheel},
    {WM_GESTURE, &Gesture},
    {WM_GESTURENOTIFY, &GestureNotify},
    {WM_VSCROLL, &Bar},
};

// What a user or a control asks of a dialog, whose handlers look for its window.
constexpr UINT kRequests[] = {WM_COMMAND,       WM_NOTIFY,  WM_HELP,       WM_CONTEXTMENU,
                              WM_CLOSE,         WM_TIMER,   WM_MOUSEWHEEL, WM_GESTURE,
                              WM_GESTURENOTIFY, WM_HSCROLL, WM_VSCROLL};

// A dialog that has ended keeps its window for a moment: controls still notify while they are
// destroyed, and messages that wait are still sent.
bool IsTooLate(const ObXDlg& dialog, UINT message) {
    return dialog.window == nullptr && std::ranges::find(kRequests, message) != std::end(kRequests);
}

INT_PTR Dispatch(ObXDlg& dialog, UINT message, const Message& arguments) {
    if (IsTooLate(dialog, message)) return FALSE;
    const auto* const handler = std::ranges::find(kHandlers, message, &Handler::message);
    return handler != std::end(kHandlers)
               ? handler->call(dialog, arguments)
               : dialog.OnOtherMessage(message, arguments.wParam, arguments.lParam);
}

// A modal dialog that could be filled in part only ends as a cancel: its OK would take what isn't
// filled for what the user wants.
INT_PTR AfterException(const ObXDlg& dialog, HWND window, UINT message) noexcept {
    if (message == WM_INITDIALOG && !dialog.isModeless) EndDialog(window, IDCANCEL);
    return FALSE;
}

} // namespace

ObXDlg* ObXDlg::FromWindow(HWND window) {
    const auto own = reinterpret_cast<LONG_PTR>(&ObXDlg::Procedure);
    if (GetWindowLongPtrW(window, DWLP_DLGPROC) != own) return nullptr;
    return reinterpret_cast<ObXDlg*>(GetWindowLongPtrW(window, DWLP_USER));
}

INT_PTR CALLBACK ObXDlg::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lParam);
        reinterpret_cast<ObXDlg*>(lParam)->window = window;
    }
    auto* const dialog = reinterpret_cast<ObXDlg*>(GetWindowLongPtrW(window, DWLP_USER));
    if (dialog == nullptr) return FALSE;
    return ObLib::GuardedElse(
        [&] {
            return Dispatch(*dialog, message, {wParam, lParam});
        },
        [&] { return AfterException(*dialog, window, message); });
}

} // namespace ObLibX
