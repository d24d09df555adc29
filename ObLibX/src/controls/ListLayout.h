// Where the parts of a list view's cells and titles are: plain numbers.
#pragma once

#include <cstdint>

#include "ObLibX/src/controls/ButtonLayout.h"
#include "ObLibX/src/dialog/Geometry.h"

namespace ObLibX {

// Lengths in pixels of the screen.
struct ListMeasures {
    std::int32_t inset;          // of texts, left and right, and of a check box, left
    std::int32_t titleBottom;    // below a title's text
    std::int32_t checkTop;       // above a check box; less in a row that has no room for it
    std::int32_t checkAdvance;   // from a check box to what is right of it
    std::int32_t icon;           // width and height of an icon's place
    std::int32_t iconAdvance;    // from an icon to the text
    std::int32_t hoverTop;       // where the mouse begins to count: above it is the header
    std::int32_t rowHeight;      // of the images that set the height of rows
    std::int32_t checkRowHeight; // the same with check boxes
};
// At so many pixels to the inch.
ListMeasures ListMeasuresAt(std::int32_t dpi);

// What a cell shows besides its text.
struct CellContents {
    PixelSize check; // empty: no check box
    bool hasIcon = false;
};

struct CellParts {
    PixelRect check; // empty without one
    PixelRect icon;  // empty without one
    PixelRect text;  // may be empty
};
CellParts PlaceInCell(const PixelRect& cell, const CellContents& contents,
                      const ListMeasures& measures);

// Where a click flips the check box of a row's first cell: as high as the row.
PixelRect CheckArea(const PixelRect& cell, const ListMeasures& measures);

PixelRect TitleText(const PixelRect& title, const ListMeasures& measures);

} // namespace ObLibX
