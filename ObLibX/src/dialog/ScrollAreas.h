// Positions of a panel that is scrolled: by wheel, scroll bar and finger, as arithmetic.
#pragma once

#include <cstdint>
#include <optional>

namespace ObLibX {

// Of a panel, in scroll units.
struct ScrollExtent {
    std::int64_t total = 0;
    std::int64_t page = 0; // what is visible at once
};

// The part of a scroll bar's message that concerns positions.
enum class ScrollCode : std::uint16_t { // as SB_LINEUP and the others
    LineUp = 0,
    LineDown = 1,
    PageUp = 2,
    PageDown = 3,
    ThumbPosition = 4,
    ThumbTrack = 5,
    Top = 6,
    Bottom = 7,
};

// What a scroll bar's message came with.
struct ScrollBarState {
    std::int64_t position = 0;
    std::int64_t page = 0;  // of the bar
    std::int64_t track = 0; // where the thumb is held
};

// The highest position; 0 when everything is visible.
std::int64_t LastScrollPosition(const ScrollExtent& extent);
// The nearest position that there is.
std::int64_t ClampScrollPosition(const ScrollExtent& extent, std::int64_t position);

// One unit for a turn of the wheel, whatever its size: down for a negative one.
std::int64_t WheelScrollPosition(const ScrollExtent& extent, std::int64_t position, int delta);

// Nothing for a code that moves nothing.
std::optional<std::int64_t> BarScrollPosition(const ScrollExtent& extent, std::uint16_t code,
                                              const ScrollBarState& bar);

// Where a finger has come that went down at `startY` and is at `currentY` now; `position` is the
// present one, so that a long pan becomes faster. Nothing for less than one unit.
std::optional<std::int64_t> PanScrollPosition(const ScrollExtent& extent, std::int64_t position,
                                              std::int32_t startY, std::int32_t currentY,
                                              std::int32_t unitPixels);

// A position that a target has to be called with.
struct PendingScroll {
    const void* area = nullptr; // whose; only compared here
    std::int64_t position = 0;
    bool operator==(const PendingScroll&) const = default;
};

// Keeps one gesture from scrolling inside another one, and remembers the newest position that came
// meanwhile. One for all dialogs of a process, as they share one thread.
//
// Up with a target running: a scroll bar or a finger leaves its position for that one to be seen,
// the wheel is dropped. Up without one, as after a wheel turn with Ctrl or Shift: the next position
// of a scroll bar or a finger scrolls and lowers the guard, the wheel is dropped.
class ScrollGuard {
public:
    // Raises the guard; false when it is up.
    bool BeginWheel();
    // Takes a position. True: call its target for each TakePending(), then End(). False: whoever
    // runs does that.
    bool Begin(const PendingScroll& scroll);
    // The newest position, unless it is the one that was taken before.
    std::optional<PendingScroll> TakePending();
    void End();
    // Drops the positions of an area that ends.
    void Forget(const void* area);

    [[nodiscard]] bool IsUp() const { return isUp_; }

private:
    bool isUp_ = false;
    bool isRunning_ = false; // a target is being called
    std::optional<PendingScroll> pending_;
    std::optional<PendingScroll> taken_;
};

} // namespace ObLibX
