// Where the parts of an old file that stay are in the new one.
#pragma once

#include <vector>

#include "services/transforms/personal/TiffDirectory.h"

namespace transforms::personal {

// Parts that overlap or touch stay together, so that what several entries share is written once and
// the new file never grows by it.
class ExtentMap {
public:
    struct Part {
        Extent old;
        std::uint64_t offset = 0; // in the new file
    };

    explicit ExtentMap(std::vector<Extent> kept); // in any order, overlapping or not; none is empty

    bool Overlaps(const Extent& extent) const;
    // Gives each part its place, the first one at `offset` or one byte after it: a part at an odd
    // offset comes to an odd one. Returns the new file's size.
    std::uint64_t Place(std::uint64_t offset);
    std::uint64_t NewOffset(std::uint64_t old) const;         // of a byte that is in a part
    const std::vector<Part>& Parts() const { return parts_; } // ascending, apart from each other

private:
    std::vector<Part> parts_;
};

} // namespace transforms::personal
