// What a flat button does with the messages of its window.
#include <windowsx.h>

#include <algorithm>
#include <iterator>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLibX/src/controls/ObCustBtn.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/dialog/WindowSubclass.h"

namespace ObLibX {
namespace {

struct Message {
    WPARAM wParam;
    LPARAM lParam;
    [[nodiscard]] int X() const { return GET_X_LPARAM(lParam); }
    [[nodiscard]] int Y() const { return GET_Y_LPARAM(lParam); }
};

using B = ObFlatBtn;
using M = Message;

void PaintWindow(B& button, const M& message) {
    if (message.wParam != 0) {
        button.Paint(reinterpret_cast<HDC>(message.wParam));
        return;
    }
    const PaintDc dc(button.window);
    button.Paint(dc.Get());
}

void OnEnabled(B& button, const M& message) {
    if (message.wParam == FALSE) button.ForgetMouse();
    button.Refresh();
}

void OnCaptureLost(B& button, const M& message) {
    if (reinterpret_cast<HWND>(message.lParam) != button.window && button.isPressed) {
        button.ForgetMouse();
    }
}

// What the system invalidates of the parent is where the window was, without the ring around it.
void OnPlaceChanges(B& button, const M& message) {
    constexpr UINT kStays = SWP_NOMOVE | SWP_NOSIZE;
    const UINT flags = reinterpret_cast<const WINDOWPOS*>(message.lParam)->flags;
    if ((flags & SWP_HIDEWINDOW) != 0 || (flags & kStays) != kStays) button.HideRing();
}

using Call = void (*)(B& button, const M& message);

// What a message does before the stock button gets it.
struct Row {
    UINT message;
    Call call;
};

constexpr Row kBefore[] = {
    {WM_MOUSEMOVE, [](B& b, const M& m) { b.OnMouseMove(m.X(), m.Y()); }},
    {WM_LBUTTONDOWN, [](B& b, const M& m) { b.OnLeftButtonDown(m.X(), m.Y()); }},
    {WM_LBUTTONDBLCLK, [](B& b, const M& m) { b.OnLeftButtonDown(m.X(), m.Y()); }},
    {WM_LBUTTONUP, [](B& b, const M& m) { b.OnLeftButtonUp(m.X(), m.Y()); }},
    {WM_MOUSELEAVE, [](B& b, const M&) { b.OnMouseLeave(); }},
    {WM_CAPTURECHANGED, &OnCaptureLost},
    {WM_WINDOWPOSCHANGING, &OnPlaceChanges},
};

// What a message does after the stock button has had it. That paints by itself, without WM_PAINT;
// what it has painted is painted over at once.
constexpr Row kAfter[] = {
    {WM_SETFOCUS, [](B& b, const M&) { b.OnSetFocus(), b.Repaint(); }},
    {WM_KILLFOCUS, [](B& b, const M&) { b.OnKillFocus(), b.Repaint(); }},
    {BM_SETCHECK, [](B& b, const M& m) { b.OnSetCheck(m.wParam != BST_UNCHECKED), b.Repaint(); }},
    {BM_SETSTATE, [](B& b, const M&) { b.Repaint(); }},
    {BM_SETSTYLE, [](B& b, const M&) { b.Repaint(); }},
    {BM_SETIMAGE, [](B& b, const M&) { b.Repaint(); }},
    {WM_SETTEXT, [](B& b, const M&) { b.Repaint(); }},
    {WM_UPDATEUISTATE, [](B& b, const M&) { b.Refresh(); }},
    {WM_ENABLE, [](B& b, const M& m) { OnEnabled(b, m), b.Repaint(); }},
};

// Messages that the stock button doesn't get; the result is 1.
constexpr Row kInstead[] = {
    {WM_PAINT, &PaintWindow},
    {WM_PRINTCLIENT, &PaintWindow},
    {WM_ERASEBKGND, [](B&, const M&) {}}, // painting covers the whole window
};

template <std::size_t Count>
bool Ran(const Row (&rows)[Count], UINT message, B& button, const M& arguments) {
    const auto* const row = std::ranges::find(rows, message, &Row::message);
    if (row == std::end(rows)) return false;
    static_cast<void>(ObLib::RanGuarded([&] { row->call(button, arguments); }));
    return true;
}

} // namespace

bool ObFlatBtn::PaintedByMessage(ObFlatBtn& button, UINT message, WPARAM wParam) {
    return Ran(kInstead, message, button, {wParam, 0});
}

// The stock button notifies the dialog, which may destroy the window and then the object: the
// object is used afterwards only where the window is still there.
LRESULT CALLBACK ObFlatBtn::ButtonProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                            UINT_PTR, DWORD_PTR object) {
    auto& button = *reinterpret_cast<ObFlatBtn*>(object);
    const Message arguments{wParam, lParam};
    if (message == WM_NCDESTROY) {
        button.fade.Stop();
        RemoveSubclass(window, &ObFlatBtn::ButtonProcedure, &button);
        return CallNextSubclass(window, message, wParam, lParam);
    }
    if (PaintedByMessage(button, message, wParam)) return 1;
    if (message == WM_GETDLGCODE) {
        const LRESULT own = ObLib::Guarded(LRESULT{0}, [&] { return button.OnGetDlgCode(wParam); });
        if (own != 0) return own;
    }
    Ran(kBefore, message, button, arguments);
    const LRESULT result = CallNextSubclass(window, message, wParam, lParam);
    if (IsWindow(window)) Ran(kAfter, message, button, arguments);
    return result;
}

} // namespace ObLibX
