#include "OBCore/settings/CollapseLayout.h"

#include <algorithm>

namespace obcore {

CollapsePlan PlanCollapse(std::span<const std::int32_t> removedTops,
                          std::span<const StayingChild> children, std::int32_t clientBottom) {
    CollapsePlan plan;
    if (removedTops.empty()) return plan;
    const std::int32_t gap = *std::ranges::min_element(removedTops);
    std::int32_t next = clientBottom;
    for (std::size_t at = 0; at < children.size(); ++at) {
        const StayingChild& child = children[at];
        if (!child.isShown || child.isEditFrame || child.top <= gap) continue;
        next = plan.moved.empty() ? child.top : std::min(next, child.top);
        plan.moved.push_back(at);
    }
    plan.shift = gap - next;
    return plan;
}

} // namespace obcore
