// Scrolls a window that has scroll bars of its own as if its own bars were used.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>

#include "ObLibX/src/controls/ScrollLayout.h"

namespace ObLibX {

// What the window's own bar has: range, page and position. Nothing where there is no such bar. On
// the window's thread, as the next one.
std::optional<SCROLLINFO> HostScrollInfo(HWND host, ScrollOrientation orientation);

// Passes an SB_ code to the window. `value`: where the thumb was dragged to, for SB_THUMBTRACK and
// SB_THUMBPOSITION; not looked at for other codes. The window may be gone afterwards.
void ScrollHost(HWND host, ScrollOrientation orientation, std::uint16_t code, std::int32_t value);

} // namespace ObLibX
