// Eight SIMD lanes: compiled for the short form of AVX-512, which rotates in one step.
#include "services/archive/crypto/Pbkdf2SimdKernel.h"

namespace obarchive {
namespace {

// The upper half of the registers, which only this form uses and nothing else would clear.
void ForgetUpperRegisters() noexcept {
    asm volatile("vpxord %%xmm16, %%xmm16, %%xmm16\n\t"
                 "vpxord %%xmm17, %%xmm17, %%xmm17\n\t"
                 "vpxord %%xmm18, %%xmm18, %%xmm18\n\t"
                 "vpxord %%xmm19, %%xmm19, %%xmm19\n\t"
                 "vpxord %%xmm20, %%xmm20, %%xmm20\n\t"
                 "vpxord %%xmm21, %%xmm21, %%xmm21\n\t"
                 "vpxord %%xmm22, %%xmm22, %%xmm22\n\t"
                 "vpxord %%xmm23, %%xmm23, %%xmm23\n\t"
                 "vpxord %%xmm24, %%xmm24, %%xmm24\n\t"
                 "vpxord %%xmm25, %%xmm25, %%xmm25\n\t"
                 "vpxord %%xmm26, %%xmm26, %%xmm26\n\t"
                 "vpxord %%xmm27, %%xmm27, %%xmm27\n\t"
                 "vpxord %%xmm28, %%xmm28, %%xmm28\n\t"
                 "vpxord %%xmm29, %%xmm29, %%xmm29\n\t"
                 "vpxord %%xmm30, %%xmm30, %%xmm30\n\t"
                 "vpxord %%xmm31, %%xmm31, %%xmm31"
                 :
                 :
                 : "xmm16", "xmm17", "xmm18", "xmm19", "xmm20", "xmm21", "xmm22", "xmm23", "xmm24",
                   "xmm25", "xmm26", "xmm27", "xmm28", "xmm29", "xmm30", "xmm31", "memory");
}

} // namespace

void DeriveEightLanesRotating(Pbkdf2Simd& lanes) noexcept {
    using Vector = std::uint32_t __attribute__((vector_size(32)));
    DeriveLanes<Vector>(lanes);
    ForgetUpperRegisters();
}

} // namespace obarchive
