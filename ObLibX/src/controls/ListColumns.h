// The widths of a list view's columns.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "ObLibX/src/dialog/DialogDescription.h"

namespace ObLibX {

// In pixels, for a list whose client area is `clientWidth` wide: each its percent, the last what is
// left over; never less than 0. Throws std::bad_alloc. Any thread.
std::vector<std::int32_t> ColumnWidths(std::span<const ColumnDescription> columns,
                                       std::int32_t clientWidth);

} // namespace ObLibX
