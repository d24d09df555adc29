// The titles of a list view's columns, as its header has them.
#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

#include "ObLibX/src/controls/ButtonLayout.h"
#include "ObLibX/src/dialog/Geometry.h"

namespace ObLibX {

// On the list's thread. A header may be null: then it has no title.

int TitleCount(HWND header);
// In the header's client coordinates; empty for a title that isn't there.
PixelRect TitleArea(HWND header, int title);

inline constexpr int kLongestTitle = 260; // characters, with the NUL
struct Title {
    HorizontalPlace horizontal = HorizontalPlace::Left;
    wchar_t text[kLongestTitle] = {};
};
// What of its text fits.
Title TitleOf(HWND header, int title);

// Where a column is on the list, in the list's client coordinates.
struct ListColumn {
    std::int32_t left = 0;
    std::int32_t right = 0;
    HorizontalPlace horizontal = HorizontalPlace::Left;
};
// By the number of the column, wherever it was moved to. Throws std::bad_alloc.
std::vector<ListColumn> ColumnsOf(HWND list, HWND header);

} // namespace ObLibX
