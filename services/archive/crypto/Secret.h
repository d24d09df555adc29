// A password in memory, and the registers that its copies went through.
#pragma once

#include "ObLib/Src/Win32/Secret.h"

namespace obarchive {

using ObLib::Secret;
using ObLib::WipedBuffer;

// Clears the registers that a copy of a secret went through. They would live on until they are used
// for something else, and the system may write them down with a thread's state. Those beyond are
// kept over calls, so whoever uses them puts back what was in them; who works with wider ones
// clears them itself.
inline void ForgetRegisters() noexcept {
    asm volatile("pxor %%xmm0, %%xmm0\n\t"
                 "pxor %%xmm1, %%xmm1\n\t"
                 "pxor %%xmm2, %%xmm2\n\t"
                 "pxor %%xmm3, %%xmm3\n\t"
                 "pxor %%xmm4, %%xmm4\n\t"
                 "pxor %%xmm5, %%xmm5"
                 :
                 :
                 : "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "memory"); // not before the copy
}

} // namespace obarchive
