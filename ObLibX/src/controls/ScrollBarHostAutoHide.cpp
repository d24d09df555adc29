// When the bars of a host come and go, and what is there while they are away.
#include <windows.h>

#include <windowsx.h>

#include <algorithm>

#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/controls/ScrollBarHost.h"
#include "ObLibX/src/dialog/Gesture.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

constexpr COLORREF kStripColor = 0xF0F0F0;
constexpr std::uint32_t kPaletteThumb = 10;

// The rectangle in which a mouse rests.
PixelPoint HoverSize() {
    UINT width = 0;
    UINT height = 0;
    SystemParametersInfoW(SPI_GETMOUSEHOVERWIDTH, 0, &width, 0);
    SystemParametersInfoW(SPI_GETMOUSEHOVERHEIGHT, 0, &height, 0);
    return {static_cast<std::int32_t>(width), static_cast<std::int32_t>(height)};
}

bool IsUnderCursor(const ScrollBarHolder& holder) {
    POINT cursor{};
    RECT rect{};
    return holder.IsShown() && GetCursorPos(&cursor) && GetWindowRect(holder.Window(), &rect) &&
           PtInRect(&rect, cursor);
}

// On a list view's header, a window of its own, the mouse has left the list, but not for the user.
bool IsCursorOnChildOf(HWND host) {
    POINT cursor{};
    return GetCursorPos(&cursor) && IsChild(host, WindowFromPoint(cursor)) != FALSE;
}

// The device context of a whole window for a scope.
class WindowDc {
public:
    explicit WindowDc(HWND window) : window_(window), dc_(GetWindowDC(window)) {}
    ~WindowDc() {
        if (dc_ != nullptr) ReleaseDC(window_, dc_);
    }
    WindowDc(const WindowDc&) = delete;
    WindowDc& operator=(const WindowDc&) = delete;
    [[nodiscard]] HDC Get() const { return dc_; } // null when there is none

private:
    HWND window_;
    HDC dc_;
};

// Where a strip shows the place of what is visible; empty when all of it is.
PixelRect StripThumb(const PixelRect& strip, const ObFlatScrollbar& bar) {
    const ScrollRange& range = bar.Range();
    if (!CanScroll(range)) return {};
    const PixelRect thumb =
        LayOutScrollBar({bar.Orientation(), {strip.Width(), strip.Height()}, 0, kLeastThumbLength},
                        range, bar.Position())
            .thumb;
    return {strip.left + thumb.left, strip.top + thumb.top, strip.left + thumb.right,
            strip.top + thumb.bottom};
}

void PaintStrip(HDC dc, const PixelRect& strip, const ObFlatScrollbar* bar) {
    if (strip.IsEmpty()) return;
    const bool isContrast = IsHighContrast();
    FillArea(dc, strip, isContrast ? GetSysColor(COLOR_SCROLLBAR) : kStripColor);
    if (bar == nullptr) return;
    FillArea(dc, StripThumb(strip, *bar),
             isContrast ? GetSysColor(COLOR_WINDOWFRAME) : GetPaletteColor(kPaletteThumb));
}

} // namespace

LRESULT ScrollBarHost::OnAutoHideMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_NCHITTEST:
        return HTCLIENT;
    case WM_NCPAINT: {
        const auto presence = Presence();
        const LRESULT result = Default(message, wParam, lParam);
        if (!presence.expired()) PaintStrips();
        return result;
    }
    case WM_TIMER:
        if (wParam != kHideBarsTimer) break;
        OnHideTick();
        return 0;
    case WM_MOUSEMOVE:
        OnMouseMove({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
        break;
    case WM_MOUSEHOVER:
        if (!hoverTracking_) break;
        hoverTracking_ = false;
        ShowBars();
        return 0; // the host didn't ask for it
    case WM_MOUSELEAVE:
        isLeaveAsked_ = hoverTracking_ = false;
        StartHideTimer();
        break;
    case WM_GESTURENOTIFY: {
        GESTURECONFIG all{0, GC_ALLGESTURES, 0};
        ObLibX::SetGestureConfig(host_, 0, 1, &all, sizeof all);
        break;
    }
    default:
        break;
    }
    return DefaultAndCopy(message, wParam, lParam);
}

// A mouse that is elsewhere leaves at once, so that bars which come by a key go again too.
void ScrollBarHost::ShowBars() {
    if (host_ == nullptr || !autoHide_ || changingMode_ || !IsWindowVisible(host_)) return;
    if (hideTimerRunning_) {
        StartHideTimer();
    } else {
        AskForMouse();
    }
    if (areOut_) return;
    CopyState();
    areOut_ = true;
    SlideBars(true);
}

void ScrollBarHost::HideBars() {
    areOut_ = false;
    StopHideTimer();
    SlideBars(false);
}

// The corner has no direction of its own. What the host has scrolled, and what was below a bar that
// has gone, is painted before each slide, which takes its time inside the call.
void ScrollBarHost::SlideBars(bool isShown) {
    const struct {
        const ScrollBarHolder& holder;
        const bool& isOff;
    } slides[] = {{verticalHolder_, verticalOff_}, {horizontalHolder_, horizontalOff_}};
    const auto presence = Presence();
    if (!isShown || verticalOff_ || horizontalOff_) cornerHolder_.Show(false);
    for (const auto& [holder, isOff] : slides) {
        UpdateWindow(host_);
        if (presence.expired()) return;
        holder.Slide(isShown && !isOff);
        if (presence.expired()) return;
    }
    if (isShown && !verticalOff_ && !horizontalOff_) cornerHolder_.Show(true);
}

// Windows that come and go under the mouse make it move as well, by nothing.
void ScrollBarHost::OnMouseMove(PixelPoint point) {
    StopHideTimer();
    const bool isMoved = HasLeftHover(lastPoint_, point, HoverSize());
    if (isMoved) lastPoint_ = point;
    if (isMoved && !areOut_) hoverTracking_ = true;
    if (isMoved || !isLeaveAsked_) AskForMouse();
}

void ScrollBarHost::AskForMouse() {
    const DWORD what = TME_LEAVE | (hoverTracking_ ? TME_HOVER : 0);
    TRACKMOUSEEVENT asked{sizeof asked, what, host_, HOVER_DEFAULT};
    isLeaveAsked_ = TrackMouseEvent(&asked) != FALSE;
}

// Starts anew while it runs.
void ScrollBarHost::StartHideTimer() {
    if (host_ == nullptr || !areOut_) return;
    hideTimerRunning_ = SetTimer(host_, kHideBarsTimer, kHideBarsDelay, nullptr) != 0;
}

void ScrollBarHost::StopHideTimer() {
    if (!hideTimerRunning_) return;
    KillTimer(host_, kHideBarsTimer);
    hideTimerRunning_ = false;
}

bool ScrollBarHost::AreBarsUsed() const {
    const auto hasCapture = [](const ScrollBarHolder& holder) {
        return holder.Bar() != nullptr && GetCapture() == holder.Bar()->window;
    };
    return isMenuOpen_ || hasCapture(verticalHolder_) || hasCapture(horizontalHolder_) ||
           IsUnderCursor(cornerHolder_) || IsCursorOnChildOf(host_);
}

void ScrollBarHost::OnHideTick() {
    if (!AreBarsUsed()) HideBars();
}

void ScrollBarHost::CoverOwnBars() const {
    if (autoHide_ && !areOut_) PaintStrips();
}

// The system paints a piece of its own bars there.
void ScrollBarHost::PaintStrips() const {
    if (host_ == nullptr) return;
    HostFrame frame = FrameNow();
    frame.window = {0, 0, frame.window.Width(), frame.window.Height()};
    const HolderPlaces strips = PlaceStrips(frame, Strip());
    const WindowDc dc(host_);
    if (dc.Get() == nullptr) return;
    PaintStrip(dc.Get(), strips.vertical, verticalHolder_.Bar());
    PaintStrip(dc.Get(), strips.horizontal, horizontalHolder_.Bar());
    PaintStrip(dc.Get(), strips.corner, nullptr);
}

} // namespace ObLibX
