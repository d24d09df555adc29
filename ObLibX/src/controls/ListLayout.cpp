#include "ObLibX/src/controls/ListLayout.h"

#include <algorithm>

namespace ObLibX {
namespace {

constexpr std::int32_t kUnscaledDpi = 96;

} // namespace

ListMeasures ListMeasuresAt(std::int32_t dpi) {
    const auto at = [&](std::int32_t length) {
        return (length * dpi + kUnscaledDpi / 2) / kUnscaledDpi;
    };
    return {.inset = at(4),
            .titleBottom = at(3),
            .checkTop = at(4),
            .checkAdvance = at(20),
            .icon = at(16),
            .iconAdvance = at(24),
            .hoverTop = at(24),
            .rowHeight = at(18),
            .checkRowHeight = at(24)};
}

CellParts PlaceInCell(const PixelRect& cell, const CellContents& contents,
                      const ListMeasures& measures) {
    CellParts parts;
    std::int32_t left = cell.left + measures.inset;
    if (!contents.check.IsEmpty()) {
        const std::int32_t middle = (cell.Height() - contents.check.height) / 2;
        const std::int32_t top = cell.top + std::clamp(middle, 0, measures.checkTop);
        parts.check = {left, top, left + contents.check.width, top + contents.check.height};
        left += measures.checkAdvance;
    }
    if (contents.hasIcon) {
        const std::int32_t top = cell.top + (cell.Height() - measures.icon) / 2;
        parts.icon = {left, top, left + measures.icon, top + measures.icon};
        left += measures.iconAdvance;
    }
    parts.text = {left, cell.top, std::max(cell.right - measures.inset, left), cell.bottom};
    return parts;
}

PixelRect CheckArea(const PixelRect& cell, const ListMeasures& measures) {
    const std::int32_t right = cell.left + measures.inset + measures.checkAdvance;
    return {cell.left, cell.top, std::min(right, cell.right), cell.bottom};
}

PixelRect TitleText(const PixelRect& title, const ListMeasures& measures) {
    return {title.left + measures.inset, title.top, title.right - measures.inset,
            title.bottom - measures.titleBottom};
}

} // namespace ObLibX
