// Where the parts of combo boxes are: plain numbers.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ObLibX/src/dialog/Geometry.h"

namespace ObLibX {

enum class ComboKind { Simple, Dropdown, DropdownList };

// Place of the list of `listHeight`, in the coordinates of the other two: as wide as the item and
// below the combo, or of a simple one, which is inside the combo, a little wider than the edit and
// below that.
PixelRect PlaceComboList(ComboKind kind, const PixelRect& combo, const PixelRect& item,
                         std::int32_t listHeight);

// The right `width` pixels of the client area, or all of it.
PixelRect ComboButton(const PixelRect& client, std::int32_t width);

// The width of the button beside an edit.
std::int32_t ButtonBesideEdit(const PixelRect& combo, const PixelRect& edit);

// Where a list that is dropped down begins, for the place that the stock combo box gives it; one
// that is dropped up stays where it is.
std::int32_t DroppedListTop(const PixelRect& combo, std::int32_t stockTop);

// How many units of a text are drawn where the first `count` fit: without half a surrogate pair at
// their end. `text` is followed by its NUL.
std::size_t WholeCharacters(const wchar_t* text, std::size_t count);

} // namespace ObLibX
