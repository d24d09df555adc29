// The size and quality of a shrunk picture.
#include "services/transforms/raster/ShrinkStep.h"

#include <algorithm>

namespace transforms {

double QualityOf(const ShrinkStep& step) noexcept {
    const double coarseness = step.coarseness + step.sixteenths / 16.0;
    return std::clamp(coarseness <= 100 ? 100 - coarseness / 2 : 5000 / coarseness, 1.0, 100.0);
}

PictureSize SizeAfter(PictureSize size, const ShrinkStep& step) noexcept {
    const std::uint64_t longest = std::max(size.width, size.height);
    if (!step.longestEdge || longest <= step.longestEdge) return size;
    const auto shrunk = [&](std::uint64_t side) {
        const std::uint64_t rounded = (side * step.longestEdge + longest / 2) / longest;
        return static_cast<std::uint32_t>(std::max<std::uint64_t>(rounded, 1));
    };
    return {shrunk(size.width), shrunk(size.height)};
}

} // namespace transforms
