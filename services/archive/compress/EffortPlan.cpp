#include "services/archive/compress/EffortPlan.h"

namespace obarchive {
namespace {

// Measured on letters, logs, tables and records. Quick packing loses up to 40 thousandths of a
// piece's packed size, which is about two fifths of its own.
constexpr std::uint64_t kAllowed = 16;
constexpr std::uint64_t kQuickLoss = 40;
constexpr std::uint64_t Packed(std::uint64_t size) { return size * 2 / 5; }

// There is less to be found in a small piece: quick packing loses 24 thousandths. So four in five
// may be packed so, one like the other, whatever else is in the run.
constexpr std::uint64_t kSmall = 64 * 1024;
constexpr std::uint64_t kQuickSmall = 4;
constexpr std::uint64_t kOfSmall = 5;

} // namespace

EffortPlan::EffortPlan(const std::vector<std::uint64_t>& sizes) {
    for (const std::uint64_t size : sizes) {
        if (size > kSmall) allowed_ += Packed(size) * kAllowed;
    }
}

// It was counted as if it shrank.
void EffortPlan::AddStored(std::uint64_t size) {
    if (size > kSmall) allowed_ += (size - Packed(size)) * kAllowed;
}

Effort EffortPlan::NextSmall(std::uint64_t size) {
    small_ += size;
    if ((smallQuick_ + size) * kOfSmall > small_ * kQuickSmall) return Effort::Thorough;
    smallQuick_ += size;
    return Effort::Quick;
}

// What is allowed is used up from the beginning on: what is stored shows only when it is read, and
// may be followed by nothing that makes use of it.
Effort EffortPlan::Next(std::uint64_t size) {
    if (size <= kSmall) return NextSmall(size);
    const std::uint64_t loss = Packed(size) * kQuickLoss;
    if (lost_ + loss > allowed_) return Effort::Thorough;
    lost_ += loss;
    return Effort::Quick;
}

} // namespace obarchive
