#include "ObLibX/src/controls/ObCustProgress.h"

#include <commctrl.h>

#include <algorithm>
#include <iterator>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/dialog/WindowSubclass.h"

namespace ObLibX {
namespace {

constexpr int kFrameThickness = 2; // at every scale

struct StateColor {
    LRESULT state;
    COLORREF color;
};
// Every other state has the accent colour.
constexpr StateColor kStateColors[] = {{PBST_ERROR, 0x2626DA}, {PBST_PAUSED, 0x26CBDA}};

// What changes the picture.
constexpr UINT kRepainted[] = {PBM_SETPOS,     PBM_DELTAPOS, PBM_STEPIT,     PBM_SETRANGE,
                               PBM_SETRANGE32, PBM_SETSTATE, PBM_SETBARCOLOR};

// One for all progress bars.
HBRUSH WhiteBrush() { return static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)); }

} // namespace

ObFlatProgressBar::ObFlatProgressBar(std::int32_t controlId)
    : ObCustomControl(controlId, nullptr, L"", 0) {}

// A window that outlives its object goes on as a stock one.
ObFlatProgressBar::~ObFlatProgressBar() {
    RemoveSubclass(window, &ObFlatProgressBar::Procedure, this);
    if (isMarquee) KillTimer(window, kMarqueeTimer);
}

void ObFlatProgressBar::Attach(HWND attached) {
    ObCustomControl::Attach(attached);
    AddSubclass(window, &ObFlatProgressBar::Procedure, this);
    Refresh();
}

LRESULT CALLBACK ObFlatProgressBar::Procedure(HWND window, UINT message, WPARAM wParam,
                                              LPARAM lParam, UINT_PTR, DWORD_PTR object) {
    auto* const bar = reinterpret_cast<ObFlatProgressBar*>(object);
    if (message == WM_NCDESTROY) {
        RemoveSubclass(window, &ObFlatProgressBar::Procedure, bar);
        bar->RunMarquee(false);
    } else if (ObLib::Guarded(true, [&] { return bar->OnMessage(message, wParam); })) {
        return message == WM_ERASEBKGND ? TRUE : 0;
    }
    const LRESULT result = CallNextSubclass(window, message, wParam, lParam);
    // A themed stock bar invalidates itself only in the ticks of its timer, which end here.
    if (std::ranges::find(kRepainted, message) != std::end(kRepainted)) bar->Refresh();
    return result;
}

bool ObFlatProgressBar::OnMessage(UINT message, WPARAM wParam) {
    switch (message) {
    case WM_PAINT:
        OnPaint();
        return true;
    case WM_PRINTCLIENT:
        Paint(reinterpret_cast<HDC>(wParam));
        return true;
    case WM_NCPAINT:
    case WM_ERASEBKGND: // all of it is painted
        return true;
    case WM_TIMER:
        if (wParam == kMarqueeTimer) Tick();
        return true;
    case PBM_SETMARQUEE:
        RunMarquee(wParam != FALSE && HasStyle(PBS_MARQUEE));
        return false;
    case WM_STYLECHANGED:
        if (!HasStyle(PBS_MARQUEE)) RunMarquee(false);
        return false;
    default:
        return false;
    }
}

void ObFlatProgressBar::OnPaint() {
    const PaintDc dc(window);
    if (dc.Get() != nullptr) Paint(dc.Get());
}

bool ObFlatProgressBar::HasStyle(LONG_PTR style) const {
    return (GetWindowLongPtrW(window, GWL_STYLE) & style) != 0;
}

void ObFlatProgressBar::RunMarquee(bool isOn) {
    if (isOn == isMarquee) return;
    isMarquee = isOn;
    marquee = {};
    if (isOn) {
        SetTimer(window, kMarqueeTimer, kMarqueePeriod, nullptr);
    } else {
        KillTimer(window, kMarqueeTimer);
    }
    Refresh();
}

void ObFlatProgressBar::Tick() {
    if (!isMarquee) return;
    const PixelRect area = ClientArea(window);
    marquee = marquee.Moved(HasStyle(PBS_VERTICAL) ? area.Height() : area.Width());
    Refresh();
}

COLORREF ObFlatProgressBar::BarColor() const {
    const auto own = static_cast<COLORREF>(SendMessageW(window, PBM_GETBARCOLOR, 0, 0));
    if (own != CLR_DEFAULT) return own;
    const LRESULT state = SendMessageW(window, PBM_GETSTATE, 0, 0);
    const auto* const found = std::ranges::find(kStateColors, state, &StateColor::state);
    return found == std::end(kStateColors) ? GetPaletteColor(kPaletteAccent) : found->color;
}

PixelRect ObFlatProgressBar::Filled(const PixelRect& area) const {
    const bool isVertical = HasStyle(PBS_VERTICAL);
    if (isMarquee) return FilledPart(area, isVertical, marquee.start, marquee.end);
    const auto limit = static_cast<std::int32_t>(SendMessageW(window, PBM_GETRANGE, FALSE, 0));
    const auto position = static_cast<std::int32_t>(SendMessageW(window, PBM_GETPOS, 0, 0));
    const std::int32_t length = isVertical ? area.Height() : area.Width();
    return FilledPart(area, isVertical, 0, FilledLength(length, position, limit));
}

void ObFlatProgressBar::Paint(HDC dc) {
    const OffscreenPaint picture(window, dc);
    if (!picture) return;
    const PixelRect& area = picture.Area();
    FillArea(picture.Dc(), area, GetPaletteColor(kPaletteButtonFill));
    FillArea(picture.Dc(), Filled(area), BarColor());
    FrameArea(picture.Dc(), area, GetPaletteColor(kPaletteFrame), kFrameThickness);
    picture.Show();
}

HBRUSH ObFlatProgressBar::OnCtlColor(HDC dc, HWND) {
    SetBkMode(dc, TRANSPARENT);
    return WhiteBrush();
}

} // namespace ObLibX
