// Where a dialog opens: near what it belongs to, and whole on one monitor if it can be.
#pragma once

#include <functional>
#include <optional>

#include "ObLibX/src/dialog/Geometry.h"

namespace ObLibX {

// What a place is worked out from. All in pixels of the desktop.
struct PlacementRequest {
    std::int32_t width = 0; // of the window
    std::int32_t height = 0;
    bool isSizeGiven = false; // by the caller, in place of the window's own
    // The window that it belongs to; nothing: none that counts.
    std::optional<PixelRect> reference;
    PixelPoint cursor;
    bool isAtCursor = false; // the window is wanted at the cursor itself
};

struct PlacementScreen {
    // The work area of the monitor that a point is on; nothing for a point on none.
    std::function<std::optional<PixelRect>(PixelPoint)> workAreaAt;
    PixelRect workArea; // where no monitor can be found
};

// The top left corner for the window. At the cursor, 10 pixels inside the work area; else centred
// on the cursor if it is in the reference, or on the reference's centre; on the work area's centre
// where part of the window would be outside; and where no monitor is known, centred on the
// reference or the work area and moved into the work area.
PixelPoint PlaceWindow(const PlacementRequest& request, const PlacementScreen& screen);

} // namespace ObLibX
