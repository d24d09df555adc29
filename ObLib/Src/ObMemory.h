// Clearing memory for good.
#pragma once

#include <cstddef>
#include <cstring>

namespace ObLib {

// Zeroes `bytes` bytes also where the compiler sees that nobody reads them afterwards. Null is
// nothing to do.
inline void Wipe(void* memory, std::size_t bytes) noexcept {
    if (memory == nullptr) return;
    std::memset(memory, 0, bytes);
    asm volatile("" : : "r"(memory) : "memory");
}

} // namespace ObLib
