// Eight SIMD lanes: compiled for AVX2.
#include "services/archive/crypto/Pbkdf2SimdKernel.h"

namespace obarchive {

void DeriveEightLanes(Pbkdf2Simd& lanes) noexcept {
    using Vector = std::uint32_t __attribute__((vector_size(32)));
    DeriveLanes<Vector>(lanes);
}

} // namespace obarchive
