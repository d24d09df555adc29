// Four SIMD lanes: what every processor of this kind has.
#include "services/archive/crypto/Pbkdf2SimdKernel.h"

namespace obarchive {

void DeriveFourLanes(Pbkdf2Simd& lanes) noexcept {
    using Vector = std::uint32_t __attribute__((vector_size(16)));
    DeriveLanes<Vector>(lanes);
}

// The system keeps the wide registers, too, where these say yes.
bool HasEightLanes() noexcept { return __builtin_cpu_supports("avx2") != 0; }
bool HasEightLanesRotating() noexcept {
    return HasEightLanes() && __builtin_cpu_supports("avx512vl") != 0;
}

} // namespace obarchive
