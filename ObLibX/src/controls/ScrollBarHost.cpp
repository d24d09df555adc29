#include "ObLibX/src/controls/ScrollBarHost.h"

#include <commctrl.h>
#include <windowsx.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/ScopeExit.h"
#include "ObLibX/src/controls/HelperWindow.h"
#include "ObLibX/src/controls/HolderMenu.h"
#include "ObLibX/src/controls/HostScrolling.h"
#include "ObLibX/src/controls/MenuWatch.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/dialog/Gesture.h"
#include "ObLibX/src/dialog/WindowSubclass.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

// Messages after which a host's bars may have other ranges and positions although nothing of it is
// painted, besides those with which it scrolls.
struct MessageRange {
    UINT first;
    UINT last;
};
constexpr MessageRange kChanges[] = {
    {WM_SETTEXT, WM_SETTEXT},
    {WM_SETFONT, WM_SETFONT},
    {WM_CHAR, WM_CHAR},
    {WM_CUT, WM_UNDO},
    // Edits
    {EM_SETRECT, EM_SCROLLCARET},
    {EM_SETHANDLE, EM_SETHANDLE},
    {EM_REPLACESEL, EM_REPLACESEL},
    {EM_UNDO, EM_FMTLINES},
    // List boxes
    {LB_ADDSTRING, LB_SETCURSEL},
    {LB_SELECTSTRING, LB_DIR},
    {LB_SETHORIZONTALEXTENT, LB_SETTOPINDEX},
    {LB_SETCARETINDEX, LB_SETITEMHEIGHT},
    {LB_SETCOUNT, LB_SETCOUNT},
    // List views
    {LVM_SETIMAGELIST, LVM_SETIMAGELIST},
    {LVM_INSERTITEMA, LVM_DELETEALLITEMS},
    {LVM_ENSUREVISIBLE, LVM_SCROLL},
    {LVM_INSERTCOLUMNA, LVM_SETCOLUMNWIDTH},
    {LVM_SETITEMCOUNT, LVM_SETITEMCOUNT},
    {LVM_INSERTITEMW, LVM_INSERTITEMW},
    {LVM_SETCOLUMNW, LVM_INSERTCOLUMNW},
    {LVM_SETVIEW, LVM_SETVIEW},
    {LVM_INSERTGROUP, LVM_ENABLEGROUPVIEW},
};

bool MayChangeBars(UINT message) {
    return std::ranges::any_of(kChanges, [message](const MessageRange& range) {
        return message >= range.first && message <= range.last;
    });
}

bool IsPan(LPARAM gesture) {
    GESTUREINFO info{};
    info.cbSize = sizeof info;
    return ObLibX::GetGestureInfo(reinterpret_cast<HGESTUREINFO>(gesture), &info) &&
           info.dwID == GID_PAN;
}

// Whether the user scrolls by this message, or a program does.
bool IsScrolling(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_HSCROLL:
    case WM_VSCROLL:
    case WM_MOUSEWHEEL:
    case WM_MOUSEHWHEEL:
        return true;
    case WM_KEYDOWN:
        return wParam >= VK_PRIOR && wParam <= VK_DOWN; // Page Up, Page Down, End, Home, arrows
    case WM_GESTURE:
        return IsPan(lParam);
    default:
        return false;
    }
}

LONG_PTR StyleOf(HWND window) { return GetWindowLongPtrW(window, GWL_STYLE); }

PixelPoint BorderOf(HWND window) {
    PixelPoint border;
    if ((StyleOf(window) & WS_BORDER) != 0) {
        border = {GetSystemMetrics(SM_CXBORDER), GetSystemMetrics(SM_CYBORDER)};
    }
    if ((GetWindowLongPtrW(window, GWL_EXSTYLE) & WS_EX_CLIENTEDGE) != 0) {
        border.x += GetSystemMetrics(SM_CXEDGE);
        border.y += GetSystemMetrics(SM_CYEDGE);
    }
    return border;
}

bool AreSame(const SCROLLINFO& one, const SCROLLINFO& other) {
    return one.nMin == other.nMin && one.nMax == other.nMax && one.nPage == other.nPage &&
           one.nPos == other.nPos;
}

// False when it has it already.
bool TakeState(ObFlatScrollbar& bar, SCROLLINFO theirs) {
    SCROLLINFO ours{};
    ours.cbSize = sizeof ours;
    ours.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    bar.GetInfo(ours);
    if (AreSame(ours, theirs)) return false;
    theirs.fMask |= SIF_DISABLENOSCROLL;
    return bar.SetInfo(theirs, true);
}

} // namespace

ScrollBarHost::ScrollBarHost()
    : verticalHolder_(HolderKind::Vertical, *this),
      horizontalHolder_(HolderKind::Horizontal, *this), cornerHolder_(HolderKind::Corner, *this) {}

ScrollBarHost::~ScrollBarHost() { Detach(); }

void ScrollBarHost::Attach(HWND host) {
    Detach();
    if (host == nullptr) return;
    host_ = host;
    parent_ = GetAncestor(host, GA_PARENT);
    if (!CreateHolders()) return;
    SetWindowLongPtrW(host, GWL_STYLE, StyleOf(host) | WS_CLIPSIBLINGS);
    const auto presence = Presence();
    Refresh();
    if (!presence.expired()) EnableBars();
}

// All of it or nothing, also where an exception passes.
bool ScrollBarHost::CreateHolders() {
    bool isCovered = false;
    const ObLib::ScopeExit orDetach([&] {
        if (!isCovered) Detach();
    });
    if (verticalHolder_.Create(parent_) && horizontalHolder_.Create(parent_) &&
        cornerHolder_.Create(parent_)) {
        AddSubclass(host_, &ScrollBarHost::Procedure, this);
        isCovered = true;
    }
    return isCovered;
}

void ScrollBarHost::Detach() {
    const HWND host = host_;
    if (host == nullptr) return;
    RemoveSubclass(host, &ScrollBarHost::Procedure, this);
    OnHostGone();
    SetWindowPos(host, nullptr, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
}

// The holders are children of the parent, which may go later.
void ScrollBarHost::OnHostGone() {
    StopHideTimer();
    host_ = nullptr;
    verticalHolder_.Destroy();
    horizontalHolder_.Destroy();
    cornerHolder_.Destroy();
    verticalOff_ = horizontalOff_ = true;
    areOut_ = hoverTracking_ = isLeaveAsked_ = isRedrawOff_ = false;
}

std::array<const ScrollBarHolder*, 3> ScrollBarHost::Holders() const {
    return {&verticalHolder_, &horizontalHolder_, &cornerHolder_};
}

const ScrollBarHolder& ScrollBarHost::Holder(HolderKind kind) const {
    const auto holders = Holders();
    return **std::ranges::find(holders, kind, &ScrollBarHolder::Kind);
}

std::int32_t ScrollBarHost::Strip() const { return StripThickness(GetDpi()); }

// ---- Messages of the host

LRESULT CALLBACK ScrollBarHost::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                          UINT_PTR, DWORD_PTR object) {
    auto* const host = reinterpret_cast<ScrollBarHost*>(object);
    if (message == WM_NCDESTROY) {
        RemoveSubclass(window, &ScrollBarHost::Procedure, host);
        host->OnHostGone();
        return CallNextSubclass(window, message, wParam, lParam);
    }
    return ObLib::Guarded(LRESULT{0}, [&] { return host->OnMessage(message, wParam, lParam); });
}

LRESULT ScrollBarHost::Default(UINT message, WPARAM wParam, LPARAM lParam) const {
    return CallNextSubclass(host_, message, wParam, lParam);
}

template <typename Rest>
LRESULT ScrollBarHost::DefaultAnd(UINT message, WPARAM wParam, LPARAM lParam, Rest rest) {
    const auto presence = Presence();
    const LRESULT result = Default(message, wParam, lParam);
    if (!presence.expired()) rest();
    return result;
}

LRESULT ScrollBarHost::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_NCCALCSIZE:
        return OnNcCalcSize(wParam, lParam);
    case WM_SIZE:
    case WM_WINDOWPOSCHANGED:
        return OnPosChanged(message, wParam, lParam);
    case WM_ERASEBKGND:
        return DefaultAnd(message, wParam, lParam, [this] { CopyState(); });
    case WM_SHOWWINDOW: // all that comes while the parent is hidden, and before the style changes
        return DefaultAnd(message, wParam, lParam, [&] {
            if (host_ != nullptr && !changingMode_) PlaceBars(FrameNow(), wParam != FALSE);
        });
    case WM_ENABLE:
        return DefaultAnd(message, wParam, lParam, [this] { EnableBars(); });
    case WM_SETREDRAW:
        return OnSetRedraw(wParam, lParam);
    case WM_CONTEXTMENU:
        return OnContextMenu(wParam, lParam);
    default:
        if (IsScrolling(message, wParam, lParam)) return OnScrolling(message, wParam, lParam);
        return autoHide_ ? OnAutoHideMessage(message, wParam, lParam)
                         : DefaultAndCopy(message, wParam, lParam);
    }
}

LRESULT ScrollBarHost::DefaultAndCopy(UINT message, WPARAM wParam, LPARAM lParam) {
    return DefaultAnd(message, wParam, lParam, [&] {
        if (MayChangeBars(message)) CopyStateAfterChange();
    });
}

LRESULT ScrollBarHost::OnScrolling(UINT message, WPARAM wParam, LPARAM lParam) {
    return DefaultAnd(message, wParam, lParam, [this] {
        CopyStateAfterChange();
        ShowBars();
    });
}

// The keyboard can't reach a bar, but its menu. What else opens one, the host itself or its dialog,
// has been asked before.
LRESULT ScrollBarHost::OnContextMenu(WPARAM wParam, LPARAM lParam) {
    const bool isByKey = GET_X_LPARAM(lParam) == -1 && GET_Y_LPARAM(lParam) == -1;
    const bool isOurs = isByKey && reinterpret_cast<HWND>(wParam) == host_;
    if (!isOurs) return Default(WM_CONTEXTMENU, wParam, lParam);
    const MenuWatch ofHost(host_);
    const MenuWatch ofParent(parent_);
    return DefaultAnd(WM_CONTEXTMENU, wParam, lParam, [&] {
        if (!ofHost.HasSeenMenu() && !ofParent.HasSeenMenu()) OpenMenuOfABar();
    });
}

void ScrollBarHost::OpenMenuOfABar() {
    const ScrollBarHolder& holder = verticalOff_ ? horizontalHolder_ : verticalHolder_;
    if (holder.Bar() == nullptr || (verticalOff_ && horizontalOff_)) return;
    SendMessageW(holder.Bar()->window, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(host_), -1);
}

// The rectangle is that of the window before the system takes the border and the bars off.
LRESULT ScrollBarHost::OnNcCalcSize(WPARAM wParam, LPARAM lParam) {
    RECT& rect = *reinterpret_cast<RECT*>(lParam);
    const HostFrame frame = Frame(AsPixels(rect));
    return DefaultAnd(WM_NCCALCSIZE, wParam, lParam, [&] {
        if (host_ == nullptr) return;
        if (autoHide_) rect = AsRect(ClientBesideStrips(frame, AsPixels(rect), Strip()));
        if (wParam != FALSE && !changingMode_) PlaceBars(frame);
    });
}

LRESULT ScrollBarHost::OnPosChanged(UINT message, WPARAM wParam, LPARAM lParam) {
    const bool isRaised = message == WM_WINDOWPOSCHANGED &&
                          (reinterpret_cast<const WINDOWPOS*>(lParam)->flags & SWP_NOZORDER) == 0;
    return DefaultAnd(message, wParam, lParam, [&] {
        if (host_ == nullptr || changingMode_) return;
        if (isRaised) {
            for (const ScrollBarHolder* const holder : Holders()) holder->Raise();
        }
        PlaceBars(FrameNow());
    });
}

// A window that isn't to be redrawn has the style of a hidden one meanwhile.
LRESULT ScrollBarHost::OnSetRedraw(WPARAM wParam, LPARAM lParam) {
    isRedrawOff_ = wParam == FALSE && (isRedrawOff_ || (StyleOf(host_) & WS_VISIBLE) != 0);
    return DefaultAnd(WM_SETREDRAW, wParam, lParam, [this] {
        if (host_ != nullptr && !isRedrawOff_) PlaceBars(FrameNow());
    });
}

// ---- The bars

HostFrame ScrollBarHost::Frame(const PixelRect& window) const {
    const bool isLeft = (GetWindowLongPtrW(host_, GWL_EXSTYLE) & WS_EX_LEFTSCROLLBAR) != 0;
    return {window,
            BorderOf(host_),
            (StyleOf(host_) & WS_VSCROLL) != 0,
            (StyleOf(host_) & WS_HSCROLL) != 0,
            isLeft,
            verticalWidth_,
            horizontalHeight_};
}

HostFrame ScrollBarHost::FrameNow() const { return Frame(RectInParent(host_)); }

void ScrollBarHost::PlaceBars(const HostFrame& frame) {
    PlaceBars(frame, isRedrawOff_ || (StyleOf(host_) & WS_VISIBLE) != 0);
}

void ScrollBarHost::PlaceBars(const HostFrame& frame, bool isHostShown) {
    const HolderPlaces places = PlaceHolders(frame);
    const bool areWanted = isHostShown && (!autoHide_ || areOut_);
    verticalOff_ = places.vertical.IsEmpty();
    horizontalOff_ = places.horizontal.IsEmpty();
    const PixelRect* const wanted[] = {&places.vertical, &places.horizontal, &places.corner};
    for (std::size_t at = 0; at < std::size(wanted); ++at) {
        const ScrollBarHolder& holder = *Holders()[at];
        if (!wanted[at]->IsEmpty()) holder.Place(*wanted[at]);
        holder.Show(areWanted && !wanted[at]->IsEmpty());
    }
    CopyState();
}

void ScrollBarHost::EnableBars() const {
    if (host_ == nullptr) return;
    for (const ScrollBarHolder* const holder : Holders()) holder->Enable(IsWindowEnabled(host_));
}

// False when the bars have all of it already.
bool ScrollBarHost::TakeStates() {
    if (host_ == nullptr || relaying_) return false;
    bool isChanged = false;
    for (const ScrollBarHolder* const holder : Holders()) {
        ObFlatScrollbar* const bar = holder->Bar();
        if (bar == nullptr) continue;
        const auto theirs = HostScrollInfo(host_, bar->Orientation());
        if (theirs && TakeState(*bar, *theirs)) isChanged = true;
    }
    return isChanged;
}

void ScrollBarHost::CopyState() {
    if (TakeStates()) CoverOwnBars();
}

// The host may have had the system paint its own bars, also with what they had before.
void ScrollBarHost::CopyStateAfterChange() {
    TakeStates();
    CoverOwnBars();
}

void ScrollBarHost::OnHolderScroll(ObFlatScrollbar& bar, std::uint16_t code) {
    if (host_ == nullptr) return;
    const auto presence = Presence();
    {
        const bool before = std::exchange(relaying_, true);
        const ObLib::ScopeExit restore([&] {
            if (!presence.expired()) relaying_ = before;
        });
        ScrollHost(host_, bar.Orientation(), code, bar.TrackPosition());
    }
    if (!presence.expired()) CopyState();
}

void ScrollBarHost::OnHolderMenu(ObFlatScrollbar& bar, POINT point) {
    const HolderMenu menu(bar.Orientation(), autoHide_);
    const HWND window = bar.window;
    const auto presence = Presence();
    isMenuOpen_ = true;
    const std::uint32_t command = menu.Choose(window, point);
    if (presence.expired()) return;
    isMenuOpen_ = false;
    const auto isOurs = [&](const ScrollBarHolder* holder) {
        return holder->Bar() == &bar && bar.window == window;
    };
    if (host_ == nullptr || std::ranges::none_of(Holders(), isOurs)) return; // gone meanwhile
    if (command == kCommandShowBars || command == kCommandHideBars) {
        const bool isShowing = command == kCommandShowBars;
        SendMessageW(host_, kShowBarsMessage, 0, isShowing ? 1 : 0);
        if (!presence.expired()) SetAutoHide(!isShowing);
        return;
    }
    ScreenToClient(bar.window, &point);
    bar.SetLastMouse({point.x, point.y});
    RunBarCommand(bar, command);
}

// The bars are out at the moment when the mode changes: with auto-hide they go then.
void ScrollBarHost::SetAutoHide(bool isOn) {
    if (autoHide_ == isOn) return;
    autoHide_ = isOn;
    areOut_ = isOn; // without auto-hide nobody asks
    hoverTracking_ = false;
    StopHideTimer();
    const auto presence = Presence();
    ApplyFrame();
    if (!presence.expired() && isOn) HideBars();
}

void ScrollBarHost::Refresh() {
    verticalWidth_ = GetSystemMetrics(SM_CXVSCROLL);
    horizontalHeight_ = GetSystemMetrics(SM_CYHSCROLL);
    const auto presence = Presence();
    ApplyFrame();
    if (presence.expired()) return;
    for (const ScrollBarHolder* const holder : Holders()) holder->Refresh();
}

// The client area is anew what the mode leaves of it.
void ScrollBarHost::ApplyFrame() {
    if (host_ == nullptr) return;
    const auto presence = Presence();
    changingMode_ = true;
    SetWindowPos(host_, nullptr, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
    if (presence.expired()) return;
    changingMode_ = false;
    if (host_ != nullptr) PlaceBars(FrameNow());
}

} // namespace ObLibX
