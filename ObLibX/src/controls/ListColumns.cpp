#include "ObLibX/src/controls/ListColumns.h"

#include <algorithm>
#include <limits>

namespace ObLibX {
namespace {

constexpr std::int64_t kWhole = 100; // percent

} // namespace

std::vector<std::int32_t> ColumnWidths(std::span<const ColumnDescription> columns,
                                       std::int32_t clientWidth) {
    std::vector<std::int32_t> widths;
    std::int64_t rest = clientWidth;
    for (std::size_t at = 0; at < columns.size(); ++at) {
        const bool isLast = at + 1 == columns.size();
        const std::int64_t wanted =
            isLast ? rest : std::int64_t{clientWidth} * columns[at].widthPercent / kWhole;
        const auto width = static_cast<std::int32_t>(
            std::clamp<std::int64_t>(wanted, 0, std::numeric_limits<std::int32_t>::max()));
        widths.push_back(width);
        rest -= width;
    }
    return widths;
}

} // namespace ObLibX
