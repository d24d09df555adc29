// The flat scroll bar: looks and hit logic of its own, the system's messages.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/controls/ControlAccessible.h"
#include "ObLibX/src/controls/ScrollLayout.h"
#include "ObLibX/src/dialog/ObCustCtrl.h"

namespace ObLibX {

// On a static control or a stock scroll bar, of whose own behaviour nothing is left. The parent
// gets WM_HSCROLL or WM_VSCROLL with the window as sender. Clients use the SBM_ messages, that is
// SetScrollInfo and GetScrollInfo with SB_CTL too, and the TBM_ messages of
// ObCustScrollMessages.cpp. The bar's position is the client's to set: what is clicked, dragged or
// typed is only reported.
//
// The window gets the system's thickness of scroll bars, from its right or bottom edge.
//
// Input, in the order of the calls; the parent may delete the object wherever it is notified:
//   a press     OnPress, OnLeftButtonDown, then BeginDrag on the thumb or else OnPartPressed, which
//               notifies, and RepeatPress
//   a move      OnMouseMove, Drag, which notifies
//   a release   OnLeftButtonUp, EndDrag with OnDragEnding, which notifies, and OnThumbReleased
//   the mouse is taken away, or the bar is disabled or hidden   BreakOffInput with OnDragBroken
//   the window or the object goes                               EndInput: nobody is told
class ObFlatScrollbar : public ObCustomControl, private AccessibleSource {
public:
    ObFlatScrollbar(std::int32_t id, ScrollOrientation orientation);
    ~ObFlatScrollbar() override;

    // Begins with the defaults: position 0, range 0 to 100, no page, both arrows on.
    void Attach(HWND attached) override;
    void OnMouseMove(int x, int y) override;
    void OnLeftButtonDown(int x, int y) override;
    void OnLeftButtonUp(int x, int y) override;
    void OnMouseLeave() override;

    // Every message of the window; what the bar doesn't take goes to the window's own procedure.
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    // Reports the value at the place where the mouse was last, as a drag to there does.
    virtual void ScrollHere();
    virtual void ScrollToStart();
    virtual void ScrollToEnd();
    virtual void PageBack();
    virtual void PageForward();
    virtual void LineBack();
    virtual void LineForward();
    // The whole client area, off-screen first. `recalculate`: ComputeLayout before.
    virtual void Paint(HDC dc, bool recalculate);
    virtual void OnKillFocus();
    // A drag has ended with this value, and the parent has been told.
    virtual void OnThumbReleased(std::int32_t) {}
    // False: the key isn't the bar's.
    virtual bool OnKeyDown(WPARAM key);
    // At each press, not at WM_SETFOCUS: takes the focus.
    virtual void OnSetFocus();
    // Sizes the window and places its parts. During a drag the thumb stays where it was dragged to.
    virtual void ComputeLayout();
    virtual void SetPageSize(std::int32_t value);
    virtual void SetRange(std::int32_t minimum, std::int32_t maximum, bool redraw);
    // These two move the other end along where it would be passed.
    virtual void SetMinimum(std::int32_t value, bool redraw);
    virtual void SetMaximum(std::int32_t value, bool redraw);
    // The SB_ code that a notification has instead of this one.
    virtual std::uint16_t MapCode(std::uint16_t code) { return code; }
    // The thumb's start for the position, in pixels from the start of the bar.
    virtual std::int32_t ComputeThumbPosition();

    // What the messages set and get, as the system's bars do.
    void SetPosition(std::int32_t value, bool redraw);
    // By ESB_ flags; false when the arrows were so already. Other flags end the process.
    bool EnableArrows(WPARAM flags);
    // False: what is asked for isn't known, and nothing is done.
    bool SetInfo(const SCROLLINFO& info, bool redraw);
    bool GetInfo(SCROLLINFO& info) const;
    bool GetBarInfo(SCROLLBARINFO& info) const;

    [[nodiscard]] ScrollOrientation Orientation() const { return orientation_; }
    [[nodiscard]] std::int32_t Position() const { return position_; }
    // What a drag has reported last; without one the position.
    [[nodiscard]] std::int32_t TrackPosition() const { return lastReported_.value_or(position_); }
    [[nodiscard]] const ScrollRange& Range() const { return range_; }
    [[nodiscard]] const ScrollLayout& Layout() const { return layout_; }
    [[nodiscard]] bool IsDragging() const { return isDragging_; }
    // Where the mouse is for ScrollHere, in client coordinates.
    void SetLastMouse(PixelPoint point) { lastMouse_ = point; }

protected:
    // The parts at their places for the window's size.
    virtual ScrollLayout LaidOut(PixelPoint size);
    // The window's place in its parent for the place that it has.
    virtual PixelRect Placed(const PixelRect& place);
    // For screen readers: ROLE_SYSTEM_ of a scroll bar.
    LONG AccessibleRole() override;
    // A new range was set, which isn't limited yet; LimitState follows.
    virtual void OnRangeSet() {}
    // Brings what was set into what the system's controls of this kind allow: of a bar range, page
    // and position.
    virtual void LimitState();
    // A press outside the thumb, on a part that isn't switched off.
    virtual void OnPartPressed(ScrollPart part);
    // A drag ends with this value; the parent is told next.
    virtual void OnDragEnding(std::int32_t) {}
    // A drag has been broken off, after the parent was told this value.
    virtual void OnDragBroken(std::int32_t) {}
    // Draws all parts into `dc`, whose size is that of the client area.
    virtual void PaintParts(HDC dc, const PixelRect& area);

    // Sends WM_HSCROLL or WM_VSCROLL. The parent may destroy the window: `window` is null then. It
    // may also delete the object: whoever goes on afterwards asks Presence.
    void Notify(std::uint16_t code, std::int32_t value = 0);
    // Has expired once the object is gone.
    [[nodiscard]] std::weak_ptr<const void> Presence() const { return presence_; }
    // Starts the repeat, unless the button went up or the focus went while the parent was called.
    void RepeatPress();
    // Moves the thumb and shows it.
    void MoveTo(std::int32_t position);
    // No drag any more; nobody is told.
    void ForgetDrag();
    // These only store.
    void ChangePosition(std::int32_t position) { position_ = position; }
    void ChangePage(std::int32_t page) { range_.page = page; }
    // The frame of a part that the mouse is on or presses; kNoColor for any other part, also for
    // one that the mouse has come to from the part that it presses.
    [[nodiscard]] COLORREF StateFrame(ScrollPart part) const;
    // Whether the focus is to be seen: it is here, and the window's cues aren't hidden.
    [[nodiscard]] bool ShowsFocus() const;
    // To the window at once, as a state has changed.
    void PaintNow(bool recalculate);

private:
    struct Answers; // the window's messages

    static LRESULT CALLBACK BarProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                         UINT_PTR id, DWORD_PTR object);
    void BeginAnew();
    void OnPress(WPARAM keys, LPARAM point);
    void OnCaptureLost(HWND newOwner);
    void OnRepeatTick();
    void BreakOffInput();
    void EndInput();
    void ForgetPress();
    void LoadArrows();
    void PaintArrow(HDC dc, ScrollPart part, const PixelRect& area);
    void PaintThumb(HDC dc);
    void BeginDrag(PixelPoint point);
    void Drag(PixelPoint point);
    void EndDrag();
    void TakeCapture();
    void DropCapture();
    void AskForLeave();
    void AfterChange(bool redraw);
    void ReportValue(); // to screen readers, when it isn't the one from before
    [[nodiscard]] ScrollPart HotPart() const;
    [[nodiscard]] std::int32_t AlongBar(PixelPoint point) const;
    [[nodiscard]] std::int32_t ValueAt(std::int32_t pixel) const;
    [[nodiscard]] bool IsArrowOn(ScrollPart part) const;

    ScrollOrientation orientation_;
    std::int32_t position_ = 0;
    ScrollRange range_;
    ScrollLayout layout_;
    bool isMouseDown_ = false;                  // a button went down on the bar
    ScrollPart pressedPart_ = ScrollPart::None; // on which it went down
    HWND focusAtPress_ = nullptr;               // what had the focus then
    bool hasCapture_ = false;                   // the mouse is on the bar, or went down on it
    bool isLeaveAsked_ = false;                 // WM_MOUSELEAVE comes when the mouse leaves
    bool isDragging_ = false;
    std::int32_t dragStart_ = -1;      // of the mouse, along the bar
    std::int32_t dragThumbStart_ = -1; // of the thumb
    std::optional<std::int32_t> lastReported_;
    bool isUpArrowOn_ = true; // or left
    bool isDownArrowOn_ = true;
    ObLib::UniqueBitmap arrowImages_[4]; // up or left, the same disabled, down or right, disabled
    PixelPoint lastMouse_;
    ControlAccessible accessible_;
    std::int32_t heardValue_ = 0; // by screen readers
    std::shared_ptr<const void> presence_ = std::make_shared<char>();

    // AccessibleSource: the label before the bar, its position, and from where to where it goes.
    ObLib::ObString AccessibleName() override;
    LONG AccessibleState() override { return 0; }
    ObLib::ObString AccessibleValue() override;
    ObLib::ObString AccessibleDescription() override;
    bool HasAccessibleAction() override { return false; }
    void DoAccessibleAction() override {}
};

} // namespace ObLibX
