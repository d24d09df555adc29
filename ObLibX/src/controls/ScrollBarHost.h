// Flat scroll bars for a window that has scroll bars of its own, such as a list view, a list box or
// an edit of several lines.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <memory>

#include "ObLibX/src/controls/HolderLayout.h"
#include "ObLibX/src/controls/ScrollBarHolder.h"

namespace ObLibX {

// What the host gets, with `lParam` 1 or 0, before the user's choice "Show Scrollbars" or "Hide
// Scrollbars" is carried out.
inline constexpr UINT kShowBarsMessage = 12089;

// The timer's id on the host's window.
inline constexpr UINT_PTR kHideBarsTimer = 10552;
inline constexpr UINT kHideBarsDelay = 300; // milliseconds

// Covers the own bars of a window by flat ones. That window is the host; of the three windows that
// do it, children of the host's parent, each is a holder; a holder's bar is the flat one in it.
// The host goes on scrolling by itself: its bars are there, and what they have is shown by the flat
// ones; what the user does on these is passed to the host as if its own bars were used.
//
// By the keyboard, Shift+F10 and the menu key on a host for which nothing else opens a menu open
// that of a bar.
//
// With auto-hide the bars are shown only while they are needed, over the host's content, which has
// their place but for a thin strip. They come when the mouse was moved and rests, and when the host
// scrolls; they go when the mouse has left the host for a moment.
//
// Made and attached by a list view for itself, and by a dialog for any other window, in
// OnInitDialog after the dialog's own. On the thread of the dialogs. The object outlives the host's
// window or takes the bars away. It may be deleted in whatever the host answers or reports to its
// parent while a bar is used, its menu is open or the host gets a message.
class ScrollBarHost : private HolderOwner {
public:
    ScrollBarHost();
    ~ScrollBarHost();
    ScrollBarHost(const ScrollBarHost&) = delete;
    ScrollBarHost& operator=(const ScrollBarHost&) = delete;

    // `host`: a child window. Again once that window has gone, or with another one. Without memory
    // for the holders the host keeps its own bars.
    void Attach(HWND host);
    // The host has its own bars again.
    void Detach();

    // Also before Attach.
    void SetAutoHide(bool isOn);
    [[nodiscard]] bool IsAutoHide() const { return autoHide_; }

    // After a change of the system's colours or sizes; the owner of the object calls it.
    void Refresh();

    [[nodiscard]] HWND Host() const { return host_; } // null: none
    [[nodiscard]] const ScrollBarHolder& Holder(HolderKind kind) const;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                      UINT_PTR id, DWORD_PTR object);
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Default(UINT message, WPARAM wParam, LPARAM lParam) const;
    // Then does the rest, unless the object has gone meanwhile.
    template <typename Rest>
    LRESULT DefaultAnd(UINT message, WPARAM wParam, LPARAM lParam, Rest rest);
    LRESULT OnNcCalcSize(WPARAM wParam, LPARAM lParam);
    LRESULT OnPosChanged(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT DefaultAndCopy(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnSetRedraw(WPARAM wParam, LPARAM lParam);
    LRESULT OnScrolling(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnContextMenu(WPARAM wParam, LPARAM lParam);
    void OpenMenuOfABar();
    LRESULT OnAutoHideMessage(UINT message, WPARAM wParam, LPARAM lParam);
    bool CreateHolders();
    void OnHostGone();
    // Has expired once the object is gone: to be asked after each call of the host.
    [[nodiscard]] std::weak_ptr<const void> Presence() const { return presence_; }

    // HolderOwner
    [[nodiscard]] HWND HostWindow() const override { return host_; }
    void OnHolderScroll(ObFlatScrollbar& bar, std::uint16_t code) override;
    void OnHolderMenu(ObFlatScrollbar& bar, POINT point) override;

    // Vertical, horizontal, corner.
    [[nodiscard]] std::array<const ScrollBarHolder*, 3> Holders() const;
    [[nodiscard]] std::int32_t Strip() const; // pixels
    [[nodiscard]] HostFrame Frame(const PixelRect& window) const;
    [[nodiscard]] HostFrame FrameNow() const;
    void PlaceBars(const HostFrame& frame);
    void PlaceBars(const HostFrame& frame, bool isHostShown);
    void EnableBars() const;
    bool TakeStates();
    void CopyState();
    void CopyStateAfterChange();
    void ApplyFrame();

    // Auto-hide, in ScrollBarHostAutoHide.cpp.
    void ShowBars();
    void HideBars();
    void SlideBars(bool isShown);
    void OnMouseMove(PixelPoint point);
    void AskForMouse();
    void StartHideTimer();
    void StopHideTimer();
    void OnHideTick();
    [[nodiscard]] bool AreBarsUsed() const;
    void CoverOwnBars() const;
    void PaintStrips() const;

    std::int32_t verticalWidth_ = 0;
    std::int32_t horizontalHeight_ = 0;
    HWND host_ = nullptr;
    HWND parent_ = nullptr;
    ScrollBarHolder verticalHolder_;
    ScrollBarHolder horizontalHolder_;
    ScrollBarHolder cornerHolder_;
    bool relaying_ = false; // a scroll message of the bars is being passed to the host
    bool autoHide_ = false;
    bool verticalOff_ = true; // the host has no such bar now
    bool horizontalOff_ = true;
    bool hideTimerRunning_ = false;
    bool hoverTracking_ = false; // the system reports when the mouse rests
    bool changingMode_ = false;
    PixelPoint lastPoint_; // of the mouse, where it was last moved away from

    bool areOut_ = false;       // in auto-hide: the bars are there now, over the content
    bool isLeaveAsked_ = false; // the system reports when the mouse leaves
    bool isMenuOpen_ = false;
    bool isRedrawOff_ = false; // of a host that is shown
    std::shared_ptr<const void> presence_ = std::make_shared<char>();
};

} // namespace ObLibX
