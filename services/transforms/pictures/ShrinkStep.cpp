// The size of a shrunk picture.
#include "services/transforms/pictures/ShrinkStep.h"

#include <algorithm>

namespace transforms {

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
