#include "ObLibX/src/controls/ScrollBarHolder.h"

#include <windowsx.h>

#include <algorithm>
#include <iterator>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "ObLibX/src/controls/LabelBefore.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/controls/ScrollRepeat.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

constexpr DWORD kSlideTime = 200; // milliseconds
constexpr COLORREF kCornerColor = 0xF0F0F0;

// From the edge at which the holder is, and back.
struct SlideRow {
    HolderKind kind;
    DWORD in;
    DWORD out;
};
constexpr SlideRow kSlides[] = {{HolderKind::Horizontal, AW_VER_NEGATIVE, AW_VER_POSITIVE},
                                {HolderKind::Vertical, AW_HOR_NEGATIVE, AW_HOR_POSITIVE}};

// Of the point of WM_CONTEXTMENU, which the keyboard leaves out: the middle of the bar.
POINT MenuPoint(HWND bar, LPARAM lParam) {
    POINT point{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    if (point.x != -1 || point.y != -1) return point;
    const PixelPoint middle = ClientArea(bar).Centre();
    point = {middle.x, middle.y};
    ClientToScreen(bar, &point);
    return point;
}

// A bar that scrolls another window, which has the focus and the name.
class HostedScrollbar : public ObFlatScrollbar {
public:
    HostedScrollbar(ScrollOrientation orientation, HolderOwner& owner)
        : ObFlatScrollbar(0, orientation), owner_(&owner) {}

    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message != WM_CONTEXTMENU) {
            return ObFlatScrollbar::WindowProc(message, wParam, lParam);
        }
        owner_->OnHolderMenu(*this, MenuPoint(window, lParam));
        return 0;
    }
    // As the system's own bars, a press takes no focus from the window that it scrolls.
    void OnSetFocus() override {
        const HWND host = owner_->HostWindow();
        if (host != nullptr && GetFocus() != host && IsWindowEnabled(host)) SetFocus(host);
    }

private:
    ObLib::ObString AccessibleName() override {
        const HWND host = owner_->HostWindow();
        return host != nullptr ? LabelBefore(host) : ObLib::ObString();
    }

    HolderOwner* owner_;
};

} // namespace

// Registered already is as good: an earlier holder did it.
bool ScrollBarHolder::Register(HINSTANCE program) {
    WNDCLASSEXW row{};
    row.cbSize = sizeof row;
    row.style = CS_HREDRAW | CS_VREDRAW;
    row.lpfnWndProc = &ScrollBarHolder::Procedure;
    row.cbWndExtra = sizeof(ScrollBarHolder*);
    row.hInstance = program;
    row.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    row.hbrBackground = reinterpret_cast<HBRUSH>(INT_PTR{COLOR_WINDOW + 1});
    row.lpszClassName = kHolderClass;
    return RegisterClassExW(&row) != 0 || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}

bool ScrollBarHolder::Create(HWND parent) {
    const HINSTANCE program = ObLib::AppGlobals().programModule;
    Destroy();
    if (!Register(program)) return false;
    const HWND made =
        CreateWindowExW(0, kHolderClass, L"", WS_CHILD | WS_CLIPSIBLINGS | WS_CLIPCHILDREN, 0, 0, 0,
                        0, parent, nullptr, program, this);
    if (made == nullptr) return false;
    if (!MakeChild()) {
        Destroy();
        return false;
    }
    Raise();
    return true;
}

void ScrollBarHolder::Destroy() { window_.Reset(); }

bool ScrollBarHolder::MakeChild() {
    const bool isVertical = kind_ == HolderKind::Vertical;
    const bool isCorner = kind_ == HolderKind::Corner;
    const DWORD style = isCorner ? 0 : (isVertical ? SBS_VERT : SBS_HORZ);
    child_ =
        CreateWindowExW(0, isCorner ? L"Static" : L"SCROLLBAR", L"", WS_CHILD | WS_VISIBLE | style,
                        0, 0, 0, 0, Window(), nullptr, ObLib::AppGlobals().programModule, nullptr);
    if (isCorner || child_ == nullptr) return child_ != nullptr;
    bar_ = std::make_unique<HostedScrollbar>(
        isVertical ? ScrollOrientation::Vertical : ScrollOrientation::Horizontal, *owner_);
    bar_->Attach(child_);
    return true;
}

ObFlatScrollbar* ScrollBarHolder::Bar() const {
    return bar_ != nullptr && bar_->window != nullptr ? bar_.get() : nullptr;
}

bool ScrollBarHolder::IsShown() const {
    return window_ && (GetWindowLongPtrW(Window(), GWL_STYLE) & WS_VISIBLE) != 0;
}

void ScrollBarHolder::Place(const PixelRect& place) const {
    if (!window_) return;
    SetWindowPos(Window(), nullptr, place.left, place.top, place.Width(), place.Height(),
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void ScrollBarHolder::Show(bool isShown) const {
    if (window_ && IsShown() != isShown) ShowWindow(Window(), isShown ? SW_SHOWNA : SW_HIDE);
}

// Nobody sees it in a dialog that is hidden. Where the call fails, the holder is shown at once. The
// window goes with the holder, which may be deleted while it slides.
void ScrollBarHolder::Slide(bool isShown) const {
    const HWND window = Window();
    const auto* const row = std::ranges::find(kSlides, kind_, &SlideRow::kind);
    if (row != std::end(kSlides) && window_ && IsShown() != isShown &&
        IsWindowVisible(GetParent(Window()))) {
        AnimateWindow(window, kSlideTime, AW_SLIDE | (isShown ? row->in : row->out | AW_HIDE));
        if (!IsWindow(window)) return;
    }
    Show(isShown);
}

void ScrollBarHolder::Raise() const {
    if (!window_) return;
    SetWindowPos(Window(), HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

void ScrollBarHolder::Enable(bool isEnabled) const {
    if (window_ && child_ != nullptr) EnableWindow(child_, isEnabled);
}

void ScrollBarHolder::Refresh() const {
    if (Bar() != nullptr) {
        Bar()->Refresh();
    } else if (window_ && child_ != nullptr) {
        InvalidateRect(child_, nullptr, TRUE);
    }
}

LRESULT CALLBACK ScrollBarHolder::Procedure(HWND window, UINT message, WPARAM wParam,
                                            LPARAM lParam) {
    if (message == WM_NCCREATE) {
        const auto* const made = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        auto* const holder = static_cast<ScrollBarHolder*>(made->lpCreateParams);
        holder->window_.Reset(window);
        SetWindowLongPtrW(window, 0, reinterpret_cast<LONG_PTR>(holder));
    }
    auto* const holder = reinterpret_cast<ScrollBarHolder*>(GetWindowLongPtrW(window, 0));
    if (holder == nullptr) return DefWindowProcW(window, message, wParam, lParam);
    if (message == WM_NCDESTROY) {
        SetWindowLongPtrW(window, 0, 0);
        holder->OnGone();
        return DefWindowProcW(window, message, wParam, lParam);
    }
    return ObLib::Guarded(LRESULT{0},
                          [&] { return holder->OnMessage(window, message, wParam, lParam); });
}

// Whoever destroys the window, it isn't the holder's to destroy any more.
void ScrollBarHolder::OnGone() {
    static_cast<void>(window_.Release());
    child_ = nullptr;
}

void ScrollBarHolder::LetGo() const {
    if (Bar() != nullptr && GetCapture() == Bar()->window) ReleaseCapture();
}

LRESULT ScrollBarHolder::OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SIZE:
        if (child_ != nullptr) {
            SetWindowPos(child_, nullptr, 0, 0, GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam),
                         SWP_NOZORDER | SWP_NOACTIVATE);
        }
        return 0;
    case WM_WINDOWPOSCHANGED: // a bar that is held isn't told that the window around it is hidden
        if ((reinterpret_cast<const WINDOWPOS*>(lParam)->flags & SWP_HIDEWINDOW) != 0) LetGo();
        return DefWindowProcW(window, message, wParam, lParam);
    case WM_HSCROLL:
    case WM_VSCROLL:
        if (Bar() != nullptr) owner_->OnHolderScroll(*Bar(), LOWORD(wParam));
        return 0;
    case WM_SETFOCUS: // by the arrow keys of a dialog
        if (owner_->HostWindow() != nullptr) SetFocus(owner_->HostWindow());
        return 0;
    case WM_MOUSEWHEEL:
    case WM_MOUSEHWHEEL:
        if (owner_->HostWindow() == nullptr) return 0;
        return SendMessageW(owner_->HostWindow(), message, wParam, lParam);
    case WM_CTLCOLORSTATIC:
        SetDCBrushColor(reinterpret_cast<HDC>(wParam),
                        IsHighContrast() ? GetSysColor(COLOR_SCROLLBAR) : kCornerColor);
        return reinterpret_cast<LRESULT>(GetStockObject(DC_BRUSH));
    default:
        return DefWindowProcW(window, message, wParam, lParam);
    }
}

} // namespace ObLibX
