// The messages of the flat scroll bar and slider, one row each.
#include <windows.h>

#include <commctrl.h>
#include <windowsx.h>

#include <algorithm>
#include <iterator>

#include "ObLibX/src/controls/ObCustScroll.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/controls/ScrollRepeat.h"
#include "ObLibX/src/dialog/WindowSubclass.h"

namespace ObLibX {
namespace {

struct Message {
    UINT id;
    WPARAM wParam;
    LPARAM lParam;

    [[nodiscard]] std::int32_t First() const { return static_cast<std::int32_t>(wParam); }
    [[nodiscard]] std::int32_t Second() const { return static_cast<std::int32_t>(lParam); }
    template <class Data>
    [[nodiscard]] Data* As() const {
        return reinterpret_cast<Data*>(lParam);
    }
};

void Store(std::int32_t* place, std::int32_t value) {
    if (place != nullptr) *place = value;
}

} // namespace

struct ObFlatScrollbar::Answers {
    using Bar = ObFlatScrollbar;

    static LRESULT Default(const Bar& bar, const Message& m) {
        return CallNextSubclass(bar.window, m.id, m.wParam, m.lParam);
    }
    static LRESULT DefaultAndRefresh(Bar& bar, const Message& m) {
        const LRESULT result = Default(bar, m);
        bar.Refresh();
        return result;
    }
    static LRESULT Paint(Bar& bar, const Message&) {
        const PaintDc dc(bar.window);
        bar.Paint(dc.Get(), true);
        return 0;
    }
    static LRESULT Size(Bar& bar, const Message& m) {
        bar.ComputeLayout();
        return DefaultAndRefresh(bar, m);
    }
    static LRESULT Enable(Bar& bar, const Message& m) {
        bar.Refresh();
        if (m.wParam == FALSE) bar.BreakOffInput();
        return 0;
    }
    static LRESULT ShowOrHide(Bar& bar, const Message& m) {
        const LRESULT result = Default(bar, m);
        if (m.wParam == FALSE) bar.BreakOffInput();
        return result;
    }
    static LRESULT Timer(Bar& bar, const Message& m) {
        if (m.wParam != kScrollRepeatTimer) return Default(bar, m);
        bar.OnRepeatTick();
        return 0;
    }
    // Not to a stock scroll bar, which would scroll by keys that aren't the bar's.
    static LRESULT KeyDown(Bar& bar, const Message& m) {
        const HWND window = bar.window;
        return bar.OnKeyDown(m.wParam) ? 0 : DefWindowProcW(window, m.id, m.wParam, m.lParam);
    }
    static LRESULT GetObject(Bar& bar, const Message& m) {
        const LRESULT result = bar.accessible_.OnGetObject(bar.window, m.wParam, m.lParam, bar);
        return result != 0 ? result : Default(bar, m);
    }
    static LRESULT SetPos(Bar& bar, const Message& m) {
        const std::int32_t before = bar.position_;
        bar.SetPosition(m.First(), m.lParam != FALSE);
        return before;
    }
    // The position that was there, when it had to change.
    static LRESULT SetBarRange(Bar& bar, const Message& m) {
        const std::int32_t before = bar.position_;
        bar.SetRange(m.First(), m.Second(), m.id == SBM_SETRANGEREDRAW);
        return bar.position_ != before ? before : 0;
    }
    static LRESULT GetBarRange(Bar& bar, const Message& m) {
        Store(reinterpret_cast<std::int32_t*>(m.wParam), bar.range_.minimum);
        Store(m.As<std::int32_t>(), bar.range_.maximum);
        return TRUE;
    }
    static LRESULT SetScrollInfo(Bar& bar, const Message& m) {
        const auto* const info = m.As<const SCROLLINFO>();
        const bool isSet = info != nullptr && bar.SetInfo(*info, m.wParam != FALSE);
        return isSet ? bar.position_ : 0;
    }
    // A trackbar's position is that of its thumb, also while it is dragged.
    static LRESULT GetTrackbarPos(Bar& bar, const Message&) { return bar.TrackPosition(); }
    static LRESULT SetTrackbarPos(Bar& bar, const Message& m) {
        bar.SetPosition(m.Second(), m.wParam != FALSE);
        return 0;
    }
    static LRESULT SetTrackbarRange(Bar& bar, const Message& m) {
        bar.SetRange(GET_X_LPARAM(m.lParam), GET_Y_LPARAM(m.lParam), m.wParam != FALSE);
        return 0;
    }
    static LRESULT SetTrackbarMin(Bar& bar, const Message& m) {
        bar.SetMinimum(m.Second(), m.wParam != FALSE);
        return 0;
    }
    static LRESULT SetTrackbarMax(Bar& bar, const Message& m) {
        bar.SetMaximum(m.Second(), m.wParam != FALSE);
        return 0;
    }
    static LRESULT SetTrackbarPage(Bar& bar, const Message& m) {
        const std::int32_t before = bar.range_.page;
        bar.SetPageSize(m.Second());
        return before;
    }

    struct Row {
        UINT message;
        LRESULT (*answer)(Bar& bar, const Message& message);
    };
    static const Row kRows[];
};

constexpr ObFlatScrollbar::Answers::Row ObFlatScrollbar::Answers::kRows[] = {
    // A static control is transparent to the mouse.
    {WM_NCHITTEST, [](Bar&, const Message&) -> LRESULT { return HTCLIENT; }},
    {WM_GETDLGCODE, [](Bar& bar, const Message& m) { return Default(bar, m) | DLGC_WANTARROWS; }},
    {WM_ERASEBKGND, [](Bar&, const Message&) -> LRESULT { return TRUE; }},
    {WM_PAINT, &Paint},
    {WM_PRINTCLIENT,
     [](Bar& bar, const Message& m) -> LRESULT {
         bar.Paint(reinterpret_cast<HDC>(m.wParam), true);
         return 0;
     }},
    {WM_SIZE, &Size},
    {WM_ENABLE, &Enable},
    {WM_SHOWWINDOW, &ShowOrHide},
    {WM_SETTEXT, &DefaultAndRefresh},
    {WM_UPDATEUISTATE, &DefaultAndRefresh},
    {WM_SETFOCUS, [](Bar& bar, const Message&) -> LRESULT { return bar.Refresh(), 0; }},
    {WM_KILLFOCUS, [](Bar& bar, const Message&) -> LRESULT { return bar.OnKillFocus(), 0; }},
    {WM_MOUSEMOVE,
     [](Bar& bar, const Message& m) -> LRESULT {
         bar.OnMouseMove(GET_X_LPARAM(m.lParam), GET_Y_LPARAM(m.lParam));
         return 0;
     }},
    {WM_LBUTTONDOWN,
     [](Bar& bar, const Message& m) -> LRESULT { return bar.OnPress(m.wParam, m.lParam), 0; }},
    {WM_LBUTTONDBLCLK,
     [](Bar& bar, const Message& m) -> LRESULT { return bar.OnPress(m.wParam, m.lParam), 0; }},
    {WM_LBUTTONUP,
     [](Bar& bar, const Message& m) -> LRESULT {
         bar.OnLeftButtonUp(GET_X_LPARAM(m.lParam), GET_Y_LPARAM(m.lParam));
         return 0;
     }},
    {WM_MOUSELEAVE, [](Bar& bar, const Message&) -> LRESULT { return bar.OnMouseLeave(), 0; }},
    {WM_CAPTURECHANGED,
     [](Bar& bar, const Message& m)
         -> LRESULT { return bar.OnCaptureLost(reinterpret_cast<HWND>(m.lParam)), 0; }},
    {WM_TIMER, &Timer},
    {WM_KEYDOWN, &KeyDown},
    {WM_GETOBJECT, &GetObject},
    {SBM_SETPOS, &SetPos},
    {SBM_GETPOS, [](Bar& bar, const Message&) -> LRESULT { return bar.position_; }},
    {SBM_SETRANGE, &SetBarRange},
    {SBM_SETRANGEREDRAW, &SetBarRange},
    {SBM_GETRANGE, &GetBarRange},
    {SBM_ENABLE_ARROWS,
     [](Bar& bar, const Message& m) -> LRESULT { return bar.EnableArrows(m.wParam), TRUE; }},
    {SBM_SETSCROLLINFO, &SetScrollInfo},
    {SBM_GETSCROLLINFO,
     [](Bar& bar,
        const Message& m) -> LRESULT { return m.lParam != 0 && bar.GetInfo(*m.As<SCROLLINFO>()); }},
    {SBM_GETSCROLLBARINFO,
     [](Bar& bar, const Message& m)
         -> LRESULT { return m.lParam != 0 && bar.GetBarInfo(*m.As<SCROLLBARINFO>()); }},
    {TBM_GETPOS, &GetTrackbarPos},
    {TBM_GETRANGEMIN, [](Bar& bar, const Message&) -> LRESULT { return bar.range_.minimum; }},
    {TBM_GETRANGEMAX, [](Bar& bar, const Message&) -> LRESULT { return bar.range_.maximum; }},
    {TBM_SETPOS, &SetTrackbarPos},
    {TBM_SETRANGE, &SetTrackbarRange},
    {TBM_SETRANGEMIN, &SetTrackbarMin},
    {TBM_SETRANGEMAX, &SetTrackbarMax},
    {TBM_SETPAGESIZE, &SetTrackbarPage},
};

LRESULT ObFlatScrollbar::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    const Message sent{message, wParam, lParam};
    const auto* const found = std::ranges::find(Answers::kRows, message, &Answers::Row::message);
    return found == std::end(Answers::kRows) ? Answers::Default(*this, sent)
                                             : found->answer(*this, sent);
}

} // namespace ObLibX
