// What moves when rows of a dialog are taken away: arithmetic alone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace obcore {

// A child window that stays: its top edge, in the same coordinates as all others here.
struct StayingChild {
    std::int32_t top = 0;
    bool isShown = false;
    bool isEditFrame = false; // goes along with its edit
};

struct CollapsePlan {
    std::vector<std::size_t> moved; // numbers of the children that move
    std::int32_t shift = 0;         // by which they move down, and the dialog grows; negative is up
};

// `removedTops`: the top edges of the controls that are taken away. What is below the highest of
// them comes up to it; where nothing is, the dialog ends there. `clientBottom`: the bottom of the
// dialog's client area. Nothing moves when nothing is taken away.
CollapsePlan PlanCollapse(std::span<const std::int32_t> removedTops,
                          std::span<const StayingChild> children, std::int32_t clientBottom);

} // namespace obcore
