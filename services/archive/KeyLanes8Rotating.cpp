// Eight lanes: compiled for the short form of AVX-512, which rotates in one step.
#include "services/archive/KeyLanesWork.h"

namespace obarchive {

void DeriveEightLanesRotating(KeyLanes& lanes) noexcept {
    using Vector = std::uint32_t __attribute__((vector_size(32)));
    DeriveLanes<Vector>(lanes);
}

} // namespace obarchive
