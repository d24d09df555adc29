#include "ObLibX/src/controls/ComboLayout.h"

#include <algorithm>

namespace ObLibX {
namespace {

constexpr std::int32_t kSimpleGap = 2; // around the list of a simple combo box
constexpr std::int32_t kDropGap = 1;   // below the combo box

bool IsFirstHalf(wchar_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsSecondHalf(wchar_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

} // namespace

PixelRect PlaceComboList(ComboKind kind, const PixelRect& combo, const PixelRect& item,
                         std::int32_t listHeight) {
    if (kind == ComboKind::Simple) {
        const std::int32_t top = item.bottom + kSimpleGap;
        const std::int32_t bottom = std::min(top + listHeight, std::max(combo.bottom, top));
        return {item.left - kSimpleGap, top, item.right + kSimpleGap, bottom};
    }
    const std::int32_t top = combo.bottom + kDropGap;
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

std::int32_t DroppedListTop(const PixelRect& combo, std::int32_t stockTop) {
    return stockTop > combo.top ? combo.bottom + kDropGap : stockTop;
}

std::size_t WholeCharacters(const wchar_t* text, std::size_t count) {
    const bool isCut = count > 0 && IsFirstHalf(text[count - 1]) && IsSecondHalf(text[count]);
    return isCut ? count - 1 : count;
}

} // namespace ObLibX
