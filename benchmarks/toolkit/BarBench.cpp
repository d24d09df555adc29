#include "benchmarks/toolkit/BarBench.h"

#include <windows.h>

#include <algorithm>
#include <optional>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/controls/ObCustScroll.h"
#include "ObLibX/src/controls/ScrollBarHost.h"
#include "benchmarks/support/Stopwatch.h"

namespace bench {
namespace {

constexpr int kPaints = 20; // in one sample
constexpr int kRows = 60;
constexpr int kPositions = 1000;     // one a pixel, of a bar as long
constexpr int kStockPositions = 100; // the system's own takes ten milliseconds for each under Wine
constexpr int kDrags = 3;
constexpr int kRange = 4000; // more than the thumb has pixels, so that each of them is another

int tracked = 0; // values that a bar has reported in one drag

// As a client does that scrolls its content: the bar has the value that it has reported.
void TakeValue(HWND bar, WPARAM code) {
    if (LOWORD(code) == SB_THUMBTRACK) ++tracked;
    const SCROLLINFO info{sizeof info, SIF_POS, 0, 0, 0, HIWORD(code), 0};
    SetScrollInfo(bar, SB_CTL, &info, TRUE);
}

LRESULT CALLBACK ParentProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const bool isThumb = message == WM_HSCROLL &&
                         (LOWORD(wParam) == SB_THUMBTRACK || LOWORD(wParam) == SB_THUMBPOSITION);
    if (!isThumb) return DefWindowProcW(window, message, wParam, lParam);
    TakeValue(reinterpret_cast<HWND>(lParam), wParam);
    return 0;
}

ObLib::UniqueWindow MakeParent(int width) {
    WNDCLASSW row{};
    row.lpfnWndProc = &ParentProcedure;
    row.hInstance = GetModuleHandleW(nullptr);
    row.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    row.lpszClassName = L"ObBarBench";
    RegisterClassW(&row);
    return ObLib::UniqueWindow(CreateWindowExW(0, row.lpszClassName, L"",
                                               WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, width,
                                               400, nullptr, nullptr, row.hInstance, nullptr));
}

HWND MakeChild(HWND parent, const wchar_t* className, DWORD style, int width, int height) {
    return CreateWindowExW(0, className, L"", WS_CHILD | WS_VISIBLE | style, 10, 10, width, height,
                           parent, nullptr, GetModuleHandleW(nullptr), nullptr);
}

// ---- Hosted bars

// A window with a list box that has both bars.
struct ListWindow {
    ListWindow() : parent(MakeParent(500)) {
        list = MakeChild(parent.Get(), L"ListBox",
                         WS_VSCROLL | WS_HSCROLL | WS_BORDER | LBS_NOINTEGRALHEIGHT, 400, 300);
        for (int row = 0; row < kRows; ++row) {
            SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(L"A row of a list box"));
        }
        SendMessageW(list, LB_SETHORIZONTALEXTENT, 2000, 0);
    }
    [[nodiscard]] double TimePaint() const {
        const Stopwatch watch;
        for (int left = kPaints; left > 0; --left) {
            RedrawWindow(parent.Get(), nullptr, nullptr,
                         RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN | RDW_UPDATENOW);
        }
        return watch.Nanoseconds() / 1000 / kPaints;
    }
    ObLib::UniqueWindow parent;
    HWND list = nullptr;
};

// ---- The drag

// The messages wait when the drag begins, as the system's own bar takes them in a loop of its own.
void PostDrag(HWND bar, int positions) {
    const int start = GetSystemMetrics(SM_CXHSCROLL) + 5; // on the thumb
    PostMessageW(bar, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(start, 5));
    for (int pixel = 1; pixel <= positions; ++pixel) {
        PostMessageW(bar, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(start + pixel, 5));
    }
    PostMessageW(bar, WM_LBUTTONUP, 0, MAKELPARAM(start + positions, 5));
}

// Microseconds a position. Nothing when the bar hasn't reported each of them; the system's reports
// one more.
std::optional<double> TimeDrag(HWND bar, int positions) {
    const SCROLLINFO info{sizeof info, SIF_ALL, 0, kRange, 0, 0, 0};
    SetScrollInfo(bar, SB_CTL, &info, TRUE);
    tracked = 0;
    PostDrag(bar, positions);
    const Stopwatch watch;
    MSG message;
    for (int left = 5 * positions; left > 0 && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);
         --left) {
        DispatchMessageW(&message);
    }
    const double time = watch.Nanoseconds() / 1000 / positions;
    return tracked >= positions ? std::optional(time) : std::nullopt;
}

} // namespace

Pair MeasureHostPaint(int rounds) {
    const ListWindow hosted;
    const ListWindow stock;
    ObLibX::ScrollBarHost bars;
    bars.Attach(hosted.list);
    Pair times;
    for (int round = 0; round < rounds; ++round) {
        times.ours.push_back(hosted.TimePaint());
        times.theirs.push_back(stock.TimePaint());
    }
    return times;
}

Pair MeasureDrag(int rounds) {
    const int length = kPositions + 4 * GetSystemMetrics(SM_CXHSCROLL); // arrows, thumb, and a rest
    const ObLib::UniqueWindow parent = MakeParent(length + 20);
    const int height = GetSystemMetrics(SM_CYHSCROLL);
    const HWND ours = MakeChild(parent.Get(), L"ScrollBar", SBS_HORZ, length, height);
    ObLibX::ObFlatScrollbar bar(0, ObLibX::ScrollOrientation::Horizontal);
    bar.Attach(ours);
    const ObLib::UniqueWindow other = MakeParent(length + 20);
    const HWND stock = MakeChild(other.Get(), L"ScrollBar", SBS_HORZ, length, height);
    Pair times;
    for (int round = std::min(rounds, kDrags); round > 0; --round) {
        const auto one = TimeDrag(ours, kPositions);
        const auto another = TimeDrag(stock, kStockPositions);
        if (!one || !another) return {};
        times.ours.push_back(*one);
        times.theirs.push_back(*another);
    }
    return times;
}

} // namespace bench
