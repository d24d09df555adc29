// Four lanes: what every processor of this kind has.
#include "services/archive/KeyLanesWork.h"

namespace obarchive {

void DeriveFourLanes(KeyLanes& lanes) noexcept {
    using Vector = std::uint32_t __attribute__((vector_size(16)));
    DeriveLanes<Vector>(lanes);
}

bool HasEightLanes() noexcept { return __builtin_cpu_supports("avx2") != 0; }

} // namespace obarchive
