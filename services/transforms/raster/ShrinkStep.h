// One way to make a picture smaller, the same for all pictures of a run, and what is laid over it.
#pragma once

#include <cstdint>

namespace transforms {

struct PictureSize {
    std::uint32_t width = 0;
    std::uint32_t height = 0;

    bool operator==(const PictureSize&) const = default;
};

class Stamp;

struct ShrinkStep {
    // The longer side is at most so many pixels; 0 leaves the size. Pictures never grow.
    std::uint32_t longestEdge = 0;
    // How coarsely lossy forms are coded, as the JPEG standard's tables in percent: 50 is quality
    // 75, 100 is quality 50. A picture that was coded more coarsely keeps its own tables.
    int coarseness = 20;
    // Sixteenths of the way to the next coarseness: so many of a table's values are the next one's
    // already, the highest frequencies first. A whole percent is a large step where the tables are
    // nearly 1.
    int sixteenths = 0;
    // Spends time on a smaller file of the same picture.
    bool compact = false;
    // Laid over the picture when it has its size; null for none. Must outlive the work.
    const Stamp* stamp = nullptr;
};

// The same as JPEG's quality, 1 to 100.
double QualityOf(const ShrinkStep& step) noexcept;

// Each side rounded, at least 1, and never more than it was.
PictureSize SizeAfter(PictureSize size, const ShrinkStep& step) noexcept;

} // namespace transforms
