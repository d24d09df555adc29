// The panels of one dialog that are scrolled by a bar, the wheel or a finger.
#pragma once

#include <windows.h>

#include <cstdint>
#include <map>
#include <memory>

#include "ObLibX/src/dialog/Geometry.h"
#include "ObLibX/src/dialog/ScrollAreas.h"

namespace ObLibX {

// Whom a scroll area reports its position to.
class ScrollTarget {
public:
    virtual void OnScroll(std::int64_t position, std::intptr_t cookie) = 0;

protected:
    ~ScrollTarget() = default;
};

struct ScrollArea {
    ScrollTarget* target = nullptr;
    std::intptr_t cookie = 0; // passed back to the target
    HWND scrollBarWindow = nullptr;
    HWND panelWindow = nullptr;
    ScrollExtent extent;         // in scroll units; below 2^31, as bars keep positions as int
    std::int32_t unitPixels = 0; // that a finger moves for one unit
    PixelRect rectangle; // in the dialog's client coordinates; an empty one catches every point
};

// Areas in the order of their bars' ids. The guard of ScrollAreas.h and the start of a pan are one
// for the process. On the thread of the dialogs. Lets what a target throws pass.
class DialogScrolling {
public:
    DialogScrolling() = default;
    ~DialogScrolling();
    DialogScrolling(const DialogScrolling&) = delete;
    DialogScrolling& operator=(const DialogScrolling&) = delete;

    // One id twice replaces the area.
    void Add(std::int32_t scrollBarId, const ScrollArea& area);
    [[nodiscard]] std::size_t Count() const { return areas_.size(); }

    // False for what concerns no area: the message is then one like any other. `dialog`: whose
    // areas they are. The arguments are those of the message. A target that is called may delete
    // this.
    bool OnMouseWheel(HWND dialog, WPARAM wParam, LPARAM lParam) const;
    bool OnScrollBar(WPARAM wParam, LPARAM lParam) const;
    bool OnGesture(HWND dialog, LPARAM lParam) const;
    void OnGestureNotify(HWND dialog, LPARAM lParam) const;

private:
    // The first area that a point of the desktop is in; null: none.
    const ScrollArea* Hit(HWND dialog, POINT point) const;

    std::map<std::int32_t, std::unique_ptr<ScrollArea>> areas_; // by the bar's id
};

} // namespace ObLibX
