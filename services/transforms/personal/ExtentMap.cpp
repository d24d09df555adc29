#include "services/transforms/personal/ExtentMap.h"

namespace transforms::personal {
namespace {

std::uint64_t BeginOf(const ExtentMap::Part& part) { return part.old.begin; }

} // namespace

ExtentMap::ExtentMap(std::vector<Extent> kept) {
    std::ranges::sort(kept, {}, &Extent::begin);
    for (const Extent& extent : kept) {
        if (parts_.empty() || parts_.back().old.End() < extent.begin) {
            parts_.push_back({extent});
        } else {
            Extent& last = parts_.back().old;
            last.size = std::max(last.End(), extent.End()) - last.begin;
        }
    }
}

bool ExtentMap::Overlaps(const Extent& extent) const {
    if (extent.size == 0) return false;
    const auto after = std::ranges::lower_bound(parts_, extent.End(), {}, BeginOf);
    return after != parts_.begin() && std::prev(after)->old.End() > extent.begin;
}

std::uint64_t ExtentMap::Place(std::uint64_t offset) {
    for (Part& part : parts_) {
        part.offset = offset + ((offset ^ part.old.begin) & 1);
        offset = part.offset + part.old.size;
    }
    return offset;
}

std::uint64_t ExtentMap::NewOffset(std::uint64_t old) const {
    const Part& part = *std::prev(std::ranges::upper_bound(parts_, old, {}, BeginOf));
    return part.offset + (old - part.old.begin);
}

} // namespace transforms::personal
