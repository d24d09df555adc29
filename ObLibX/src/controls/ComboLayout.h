// Where the parts of combo boxes are: plain numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

#include "ObLibX/src/dialog/Geometry.h"

namespace ObLibX {

enum class ComboKind { Simple, Dropdown, DropdownList };

// Place of the list of `listHeight`, in the coordinates of the other two: as wide as the item and
// below the combo, or of a simple one a little wider than the edit and below that.
PixelRect PlaceComboList(ComboKind kind, const PixelRect& combo, const PixelRect& item,
                         std::int32_t listHeight);

// The right `width` pixels of the client area, or all of it.
PixelRect ComboButton(const PixelRect& client, std::int32_t width);

// The width of the button beside an edit.
std::int32_t ButtonBesideEdit(const PixelRect& combo, const PixelRect& edit);

// How many of `count` characters fit: the last one is left out until `fits` is true.
std::size_t FittingCharacters(std::size_t count, const std::function<bool(std::size_t)>& fits);

} // namespace ObLibX
