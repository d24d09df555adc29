#include "ObLibX/src/controls/ComboLayout.h"

#include <algorithm>

namespace ObLibX {
namespace {

constexpr std::int32_t kSimpleGap = 2; // around the list of a simple combo box

} // namespace

PixelRect PlaceComboList(ComboKind kind, const PixelRect& combo, const PixelRect& item,
                         std::int32_t listHeight) {
    if (kind == ComboKind::Simple) {
        const std::int32_t top = item.bottom + kSimpleGap;
        return {item.left - kSimpleGap, top, item.right + kSimpleGap, top + listHeight};
    }
    const std::int32_t top = combo.bottom + 1;
    return {item.left, top, item.right, top + listHeight};
}

PixelRect ComboButton(const PixelRect& client, std::int32_t width) {
    const std::int32_t left = std::max(client.right - std::max(width, 0), client.left);
    return {left, client.top, client.right, client.bottom};
}

// What is below the edit, or, where the arrow needs more, what is right of it.
std::int32_t ButtonBesideEdit(const PixelRect& combo, const PixelRect& edit) {
    return std::max(combo.bottom - edit.bottom, combo.right - edit.right) - 1;
}

std::size_t FittingCharacters(std::size_t count, const std::function<bool(std::size_t)>& fits) {
    while (count > 0 && !fits(count)) --count;
    return count;
}

} // namespace ObLibX
