// A holder: a window that covers a scroll bar of another window, the host, and shows a flat one in
// its place, or covers the corner between two bars.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/controls/ObCustScroll.h"

namespace ObLibX {

inline constexpr wchar_t kHolderClass[] = L"SCROLLBARHOLDER";

enum class HolderKind : std::int32_t { Horizontal = 0, Vertical = 1, Corner = 2 };

// Whom holders ask and tell: the object that covers a host's bars. On the thread of the dialogs;
// what these throw ends in the window procedure.
class HolderOwner {
public:
    // The window that has the bars; null once it has gone.
    [[nodiscard]] virtual HWND HostWindow() const = 0;
    // The user scrolls, with an SB_ code. For those of the thumb the bar has the value.
    virtual void OnHolderScroll(ObFlatScrollbar& bar, std::uint16_t code) = 0;
    // The right mouse button, at a point of the screen.
    virtual void OnHolderMenu(ObFlatScrollbar& bar, POINT point) = 0;

protected:
    ~HolderOwner() = default;
};

class ScrollBarHolder {
public:
    ScrollBarHolder(HolderKind kind, HolderOwner& owner) : kind_(kind), owner_(&owner) {}
    ~ScrollBarHolder() { Destroy(); }
    ScrollBarHolder(const ScrollBarHolder&) = delete;
    ScrollBarHolder& operator=(const ScrollBarHolder&) = delete;

    // Makes the window, hidden, as a child of `parent` in front of its others. False, and nothing
    // is made, when it or what is in it can't be made. The parent may destroy it. Throws
    // std::bad_alloc, with the window there.
    bool Create(HWND parent);
    void Destroy();

    [[nodiscard]] HolderKind Kind() const { return kind_; }
    // Null before Create, and once the window has gone.
    [[nodiscard]] HWND Window() const { return window_.Get(); }
    // Null for a corner, before Create, and once the window has gone.
    [[nodiscard]] ObFlatScrollbar* Bar() const;
    // By its own style, also in a dialog that is hidden.
    [[nodiscard]] bool IsShown() const;

    // In the parent's coordinates.
    void Place(const PixelRect& place) const;
    void Show(bool isShown) const;
    // As Show, sliding in from the edge and out again. Returns when the window is there.
    void Slide(bool isShown) const;
    // In front of the parent's other windows again.
    void Raise() const;
    void Enable(bool isEnabled) const;
    // Paints what is in it anew, after a change of the system's colours or sizes.
    void Refresh() const;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    static bool Register(HINSTANCE program);
    LRESULT OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    bool MakeChild();
    void LetGo() const; // the user's press or drag is broken off
    void OnGone();

    HolderKind kind_;
    HolderOwner* owner_;
    std::unique_ptr<ObFlatScrollbar> bar_; // outlives its window
    HWND child_ = nullptr;                 // fills the holder
    ObLib::UniqueWindow window_;
};

} // namespace ObLibX
