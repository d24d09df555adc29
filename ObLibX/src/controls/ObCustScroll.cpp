#include "ObLibX/src/controls/ObCustScroll.h"

#include <commctrl.h>
#include <oleacc.h>
#include <windowsx.h>

#include <algorithm>
#include <cwchar>
#include <string>

#include "ObLib/Src/ObFatal.h"
#include "ObLib/Src/Win32/Guarded.h"
#include "ObLibX/src/controls/HelperWindow.h"
#include "ObLibX/src/controls/LabelBefore.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/controls/ScrollRepeat.h"
#include "ObLibX/src/dialog/WindowSubclass.h"

namespace ObLibX {
namespace {

constexpr wchar_t kModule[] = L"ObLibX\\src\\ObCustScroll.cpp";

// A slider with this item data reaches its maximum at the end of its track, whatever its page.
constexpr wchar_t kWholeRange[] = L"wmrkhslider";

constexpr std::int64_t kWidestRange = 0x7FFFFFFF;
constexpr UINT kPreviousPosition = 0x1000; // of SCROLLINFO, without a name in the headers
constexpr UINT kKnownInfo = SIF_ALL | SIF_DISABLENOSCROLL | kPreviousPosition;

struct Operation {
    ScrollPart part;
    void (ObFlatScrollbar::*run)();
};
constexpr Operation kPressed[] = {{ScrollPart::UpArrow, &ObFlatScrollbar::LineBack},
                                  {ScrollPart::DownArrow, &ObFlatScrollbar::LineForward},
                                  {ScrollPart::PageBefore, &ObFlatScrollbar::PageBack},
                                  {ScrollPart::PageAfter, &ObFlatScrollbar::PageForward}};

struct Key {
    WPARAM key;
    void (ObFlatScrollbar::*run)();
};
constexpr Key kKeys[] = {{VK_PRIOR, &ObFlatScrollbar::PageBack},
                         {VK_NEXT, &ObFlatScrollbar::PageForward},
                         {VK_UP, &ObFlatScrollbar::LineBack},
                         {VK_DOWN, &ObFlatScrollbar::LineForward}};

// The system's metrics of bars by their orientation.
struct BarMetrics {
    int thickness;
    int arrow;
    int thumb; // without a page
};
constexpr BarMetrics kMetrics[] = {{SM_CYHSCROLL, SM_CXHSCROLL, SM_CXHTHUMB},
                                   {SM_CXVSCROLL, SM_CYVSCROLL, SM_CYVSCROLL}};

const BarMetrics& MetricsOf(ScrollOrientation orientation) {
    return kMetrics[static_cast<std::size_t>(orientation)];
}

// As large as the system's own bars take it; `isOld`: without the track position.
bool IsKnown(const SCROLLINFO& info) {
    const bool isOld = info.cbSize == sizeof info - sizeof info.nTrackPos;
    return (isOld || info.cbSize == sizeof info) && (info.fMask & ~kKnownInfo) == 0;
}

} // namespace

ObFlatScrollbar::ObFlatScrollbar(std::int32_t controlId, ScrollOrientation orientation)
    : ObCustomControl(controlId, nullptr, L"", 0), orientation_(orientation) {}

// A window that outlives its object goes on as a stock one.
ObFlatScrollbar::~ObFlatScrollbar() {
    RemoveSubclass(window, &ObFlatScrollbar::BarProcedure, this);
    if (window != nullptr) EndInput();
}

void ObFlatScrollbar::Attach(HWND attached) {
    BeginAnew();
    ObCustomControl::Attach(attached);
    AddSubclass(window, &ObFlatScrollbar::BarProcedure, this);
    LoadArrows();
    ComputeLayout();
    Refresh();
}

// A dialog that is opened again has the objects of before, on new windows.
void ObFlatScrollbar::BeginAnew() {
    position_ = 0;
    range_ = {};
    OnRangeSet();
    isUpArrowOn_ = true;
    isDownArrowOn_ = true;
    isLeaveAsked_ = false;
    lastMouse_ = {};
    heardValue_ = 0;
}

LRESULT CALLBACK ObFlatScrollbar::BarProcedure(HWND window, UINT message, WPARAM wParam,
                                               LPARAM lParam, UINT_PTR, DWORD_PTR object) {
    auto* const bar = reinterpret_cast<ObFlatScrollbar*>(object);
    if (message == WM_NCDESTROY) {
        RemoveSubclass(window, &ObFlatScrollbar::BarProcedure, bar);
        bar->EndInput();
        bar->accessible_.End();
        return CallNextSubclass(window, message, wParam, lParam);
    }
    return ObLib::Guarded(LRESULT{0}, [&] { return bar->WindowProc(message, wParam, lParam); });
}

// ---- Layout

PixelRect ObFlatScrollbar::Placed(const PixelRect& place) {
    const int thickness = GetSystemMetrics(MetricsOf(orientation_).thickness);
    PixelRect placed = place;
    if (orientation_ == ScrollOrientation::Vertical) {
        placed.left = place.right - thickness;
    } else {
        placed.top = place.bottom - thickness;
    }
    return placed;
}

ScrollLayout ObFlatScrollbar::LaidOut(PixelPoint size) {
    const BarMetrics& metrics = MetricsOf(orientation_);
    return LayOutScrollBar(
        {orientation_, size, GetSystemMetrics(metrics.arrow), GetSystemMetrics(metrics.thumb)},
        range_, position_);
}

void ObFlatScrollbar::ComputeLayout() {
    if (window == nullptr) return;
    const PixelRect place = RectInParent(window);
    const PixelRect wanted = Placed(place);
    if (wanted != place) {
        SetWindowPos(window, nullptr, wanted.left, wanted.top, wanted.Width(), wanted.Height(),
                     SWP_NOZORDER | SWP_NOACTIVATE);
    }
    const PixelRect client = ClientArea(window);
    const std::int32_t dragged = layout_.thumbOffset;
    layout_ = LaidOut({client.right, client.bottom});
    if (isDragging_) MoveThumb(layout_, orientation_, dragged);
}

std::int32_t ObFlatScrollbar::ComputeThumbPosition() {
    const PixelRect client = ClientArea(window);
    return LaidOut({client.right, client.bottom}).thumbOffset;
}

std::int32_t ObFlatScrollbar::AlongBar(PixelPoint point) const {
    return orientation_ == ScrollOrientation::Vertical ? point.y : point.x;
}

std::int32_t ObFlatScrollbar::ValueAt(std::int32_t pixel) const {
    const bool isWhole = std::wcscmp(itemData.CStr(), kWholeRange) == 0;
    return ValueFromPixel(layout_, pixel, isWhole ? WholeValueCount(range_) : ValueCount(range_),
                          range_.minimum, position_);
}

// ---- What the parent is told

void ObFlatScrollbar::Notify(std::uint16_t code, std::int32_t value) {
    const UINT message =
        orientation_ == ScrollOrientation::Vertical ? UINT{WM_VSCROLL} : UINT{WM_HSCROLL};
    SendMessageW(GetParent(window), message,
                 MAKEWPARAM(MapCode(code), static_cast<std::uint32_t>(value)),
                 reinterpret_cast<LPARAM>(window));
}

void ObFlatScrollbar::ScrollToStart() { Notify(SB_TOP); }
void ObFlatScrollbar::ScrollToEnd() { Notify(SB_BOTTOM); }
void ObFlatScrollbar::PageBack() { Notify(SB_PAGEUP); }
void ObFlatScrollbar::PageForward() { Notify(SB_PAGEDOWN); }
void ObFlatScrollbar::LineBack() { Notify(SB_LINEUP); }
void ObFlatScrollbar::LineForward() { Notify(SB_LINEDOWN); }

// The value answers SIF_TRACKPOS while the parent is called.
void ObFlatScrollbar::ScrollHere() {
    const std::int32_t start = layout_.arrowLength;
    const std::int32_t pixel = std::clamp(AlongBar(lastMouse_), start, start + layout_.trackLength);
    const std::int32_t value = ValueAt(pixel);
    if (value == position_) return;
    const auto presence = Presence();
    lastReported_ = value;
    Notify(SB_THUMBTRACK, value);
    if (!presence.expired()) lastReported_.reset();
}

bool ObFlatScrollbar::OnKeyDown(WPARAM key) {
    const auto* const found = std::ranges::find(kKeys, key, &Key::key);
    if (found == std::end(kKeys)) return false;
    (this->*found->run)();
    return true;
}

// ---- The mouse

bool ObFlatScrollbar::IsArrowOn(ScrollPart part) const {
    if (part == ScrollPart::UpArrow) return isUpArrowOn_;
    return part != ScrollPart::DownArrow || isDownArrowOn_;
}

void ObFlatScrollbar::TakeCapture() {
    hasCapture_ = true;
    if (GetCapture() != window) SetCapture(window);
}

// The system sends a window with the capture no moves over windows of other threads, unless a
// button is down.
void ObFlatScrollbar::AskForLeave() {
    if (isLeaveAsked_ || isMouseDown_) return;
    TRACKMOUSEEVENT leave{sizeof leave, TME_LEAVE, window, 0};
    isLeaveAsked_ = TrackMouseEvent(&leave) != FALSE;
}

void ObFlatScrollbar::DropCapture() {
    hasCapture_ = false;
    if (GetCapture() == window) ReleaseCapture();
}

// With the capture, so that the bar sees the mouse leave.
void ObFlatScrollbar::OnMouseMove(int x, int y) {
    const ScrollPart before = HotPart();
    lastMouse_ = {x, y};
    if (isMouseDown_ || ClientArea(window).Contains(lastMouse_)) {
        TakeCapture();
        AskForLeave();
    } else {
        DropCapture();
    }
    if (isDragging_) {
        Drag(lastMouse_);
    } else if (HotPart() != before) {
        PaintNow(false);
    }
}

void ObFlatScrollbar::OnPress(WPARAM keys, LPARAM point) {
    if (!TheScrollRepeat().Accept(window, keys)) return;
    OnLeftButtonDown(GET_X_LPARAM(point), GET_Y_LPARAM(point));
}

void ObFlatScrollbar::OnLeftButtonDown(int x, int y) {
    const auto presence = Presence();
    lastMouse_ = {x, y};
    isMouseDown_ = true;
    pressedPart_ = HitTest(layout_, lastMouse_);
    TakeCapture();
    OnSetFocus();
    if (presence.expired() || !isMouseDown_) return; // whoever lost the focus took the mouse
    focusAtPress_ = GetFocus();
    if (pressedPart_ == ScrollPart::Thumb) {
        BeginDrag(lastMouse_);
    } else if (pressedPart_ != ScrollPart::None && IsArrowOn(pressedPart_)) {
        OnPartPressed(pressedPart_);
    }
    if (!presence.expired()) PaintNow(false);
}

void ObFlatScrollbar::OnPartPressed(ScrollPart part) {
    const auto presence = Presence();
    PaintNow(false);
    (this->*std::ranges::find(kPressed, part, &Operation::part)->run)();
    if (!presence.expired()) RepeatPress();
}

void ObFlatScrollbar::RepeatPress() {
    if (isMouseDown_ && GetFocus() == focusAtPress_) TheScrollRepeat().Start(window);
}

// A bar isn't told that a window around it was hidden, nor, where a press doesn't give it the
// focus, that the focus has gone.
void ObFlatScrollbar::OnRepeatTick() {
    if (!IsWindowVisible(window)) {
        BreakOffInput();
    } else if (GetFocus() != focusAtPress_) {
        TheScrollRepeat().Stop(window);
    } else {
        TheScrollRepeat().OnTick(window);
    }
}

void ObFlatScrollbar::OnLeftButtonUp(int x, int y) {
    const auto presence = Presence();
    lastMouse_ = {x, y};
    TheScrollRepeat().Stop(window);
    ForgetPress();
    if (isDragging_) EndDrag();
    if (presence.expired()) return;
    if (!ClientArea(window).Contains(lastMouse_)) DropCapture();
    PaintNow(true);
}

void ObFlatScrollbar::OnMouseLeave() {
    isLeaveAsked_ = false;
    if (isMouseDown_) return;
    DropCapture();
    PaintNow(false);
}

void ObFlatScrollbar::OnSetFocus() {
    if (GetFocus() != window) SetFocus(window);
}

void ObFlatScrollbar::OnKillFocus() {
    TheScrollRepeat().Stop(window);
    Refresh();
}

void ObFlatScrollbar::OnCaptureLost(HWND newOwner) {
    if (newOwner == window || (!hasCapture_ && !isMouseDown_)) return;
    BreakOffInput();
}

void ObFlatScrollbar::BreakOffInput() {
    const auto presence = Presence();
    const std::optional<std::int32_t> dragged = isDragging_ ? lastReported_ : std::nullopt;
    EndInput();
    if (dragged) OnDragBroken(*dragged);
    if (presence.expired()) return;
    ReportValue();
    PaintNow(true);
}

void ObFlatScrollbar::EndInput() {
    TheScrollRepeat().Stop(window);
    ForgetPress();
    ForgetDrag();
    DropCapture();
}

void ObFlatScrollbar::ForgetPress() {
    isMouseDown_ = false;
    pressedPart_ = ScrollPart::None;
}

// ---- Dragging

void ObFlatScrollbar::BeginDrag(PixelPoint point) {
    TheScrollRepeat().Stop(window);
    isDragging_ = true;
    dragStart_ = AlongBar(point);
    dragThumbStart_ = layout_.thumbOffset;
}

void ObFlatScrollbar::Drag(PixelPoint point) {
    MoveThumb(layout_, orientation_, dragThumbStart_ + AlongBar(point) - dragStart_);
    PaintNow(false);
    const std::int32_t value = ValueAt(layout_.thumbOffset);
    if (lastReported_ == value) return;
    lastReported_ = value;
    ReportValue();
    Notify(SB_THUMBTRACK, value);
}

// The parent may ask for the track position while it is called.
void ObFlatScrollbar::EndDrag() {
    const auto presence = Presence();
    const std::int32_t value = TrackPosition();
    OnDragEnding(value);
    Notify(SB_THUMBPOSITION, value);
    if (presence.expired()) return;
    ForgetDrag();
    OnThumbReleased(value);
    ReportValue();
}

void ObFlatScrollbar::ForgetDrag() {
    isDragging_ = false;
    dragStart_ = -1;
    dragThumbStart_ = -1;
    lastReported_.reset();
}

// ---- Screen readers

ObLib::ObString ObFlatScrollbar::AccessibleName() { return LabelBefore(window); }

void ObFlatScrollbar::ReportValue() {
    if (window == nullptr || TrackPosition() == heardValue_) return;
    heardValue_ = TrackPosition();
    NotifyWinEvent(EVENT_OBJECT_VALUECHANGE, window, OBJID_CLIENT, CHILDID_SELF);
}

LONG ObFlatScrollbar::AccessibleRole() { return ROLE_SYSTEM_SCROLLBAR; }

ObLib::ObString ObFlatScrollbar::AccessibleValue() {
    return ObLib::ObString(std::to_wstring(TrackPosition()).c_str());
}

ObLib::ObString ObFlatScrollbar::AccessibleDescription() {
    const std::wstring range =
        std::to_wstring(range_.minimum) + L" - " + std::to_wstring(range_.maximum);
    return ObLib::ObString(range.c_str());
}

// ---- State

void ObFlatScrollbar::LimitState() {
    const std::int64_t length = WholeValueCount(range_);
    if (length < 0 || length > kWidestRange) range_.minimum = range_.maximum = 0;
    const std::int64_t most = WholeValueCount(range_) + 1;
    range_.page = static_cast<std::int32_t>(std::clamp<std::int64_t>(range_.page, 0, most));
    const std::int32_t last = range_.maximum - std::max(range_.page - 1, 0);
    position_ = std::clamp(position_, range_.minimum, last);
}

void ObFlatScrollbar::AfterChange(bool redraw) {
    LimitState();
    ComputeLayout();
    ReportValue();
    if (redraw) Refresh();
}

void ObFlatScrollbar::SetPosition(std::int32_t value, bool redraw) {
    position_ = value;
    AfterChange(redraw);
}

void ObFlatScrollbar::MoveTo(std::int32_t position) {
    position_ = position;
    ComputeLayout();
    ReportValue();
    PaintNow(false);
}

void ObFlatScrollbar::SetPageSize(std::int32_t value) {
    range_.page = value;
    AfterChange(true);
}

void ObFlatScrollbar::SetRange(std::int32_t minimum, std::int32_t maximum, bool redraw) {
    range_.minimum = minimum;
    range_.maximum = maximum;
    OnRangeSet();
    AfterChange(redraw);
}

void ObFlatScrollbar::SetMinimum(std::int32_t value, bool redraw) {
    SetRange(value, std::max(value, range_.maximum), redraw);
}

void ObFlatScrollbar::SetMaximum(std::int32_t value, bool redraw) {
    SetRange(std::min(range_.minimum, value), value, redraw);
}

bool ObFlatScrollbar::EnableArrows(WPARAM flags) {
    ObAssert(flags <= ESB_DISABLE_BOTH);
    const bool isUpOn = (flags & ESB_DISABLE_UP) == 0;
    const bool isDownOn = (flags & ESB_DISABLE_DOWN) == 0;
    if (isUpOn == isUpArrowOn_ && isDownOn == isDownArrowOn_) return false;
    isUpArrowOn_ = isUpOn;
    isDownArrowOn_ = isDownOn;
    Refresh();
    return true;
}

bool ObFlatScrollbar::SetInfo(const SCROLLINFO& info, bool redraw) {
    if (!IsKnown(info)) return false;
    if ((info.fMask & SIF_RANGE) != 0) {
        range_.minimum = info.nMin;
        range_.maximum = info.nMax;
        OnRangeSet();
    }
    if ((info.fMask & SIF_PAGE) != 0) {
        range_.page = static_cast<std::int32_t>(std::min<UINT>(info.nPage, kWidestRange));
    }
    if ((info.fMask & SIF_POS) != 0) position_ = info.nPos;
    AfterChange(redraw);
    if ((info.fMask & SIF_DISABLENOSCROLL) != 0) {
        EnableArrows(CanScroll(range_) ? ESB_ENABLE_BOTH : ESB_DISABLE_BOTH);
    }
    return true;
}

bool ObFlatScrollbar::GetInfo(SCROLLINFO& info) const {
    if (!IsKnown(info)) return false;
    if ((info.fMask & SIF_PAGE) != 0) info.nPage = static_cast<UINT>(range_.page);
    if ((info.fMask & SIF_POS) != 0) info.nPos = position_;
    if ((info.fMask & SIF_TRACKPOS) != 0 && info.cbSize == sizeof info) {
        info.nTrackPos = TrackPosition();
    }
    if ((info.fMask & SIF_RANGE) != 0) {
        info.nMin = range_.minimum;
        info.nMax = range_.maximum;
    }
    return (info.fMask & SIF_ALL) != 0;
}

bool ObFlatScrollbar::GetBarInfo(SCROLLBARINFO& info) const {
    if (info.cbSize != sizeof info) return false;
    GetWindowRect(window, &info.rcScrollBar);
    info.dxyLineButton = layout_.arrowLength;
    info.xyThumbTop = layout_.thumbOffset;
    info.xyThumbBottom = layout_.thumbOffset + layout_.thumbLength;
    info.reserved = 0;
    std::ranges::fill(info.rgstate, 0UL);
    const auto put = [&](ScrollPart part, bool isSo, DWORD state) {
        if (isSo) info.rgstate[static_cast<std::size_t>(part)] |= state;
    };
    put(ScrollPart::None, !IsWindowEnabled(window), STATE_SYSTEM_UNAVAILABLE);
    put(ScrollPart::None, !IsWindowVisible(window), STATE_SYSTEM_INVISIBLE);
    put(ScrollPart::UpArrow, !isUpArrowOn_, STATE_SYSTEM_UNAVAILABLE);
    put(ScrollPart::DownArrow, !isDownArrowOn_, STATE_SYSTEM_UNAVAILABLE);
    put(ScrollPart::PageBefore, layout_.pageBefore.IsEmpty(), STATE_SYSTEM_INVISIBLE);
    put(ScrollPart::PageAfter, layout_.pageAfter.IsEmpty(), STATE_SYSTEM_INVISIBLE);
    const bool isHeld = pressedPart_ != ScrollPart::None && pressedPart_ == HotPart();
    put(pressedPart_, isHeld && IsArrowOn(pressedPart_), STATE_SYSTEM_PRESSED);
    return true;
}

} // namespace ObLibX
