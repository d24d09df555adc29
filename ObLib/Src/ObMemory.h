// Clears memory so that the compiler can't leave it out.
#pragma once

#include <cstddef>
#include <cstring>

namespace ObLib {

// Zeroes `bytes` bytes, even where the compiler sees that they aren't read afterwards. Does nothing
// for null.
inline void Wipe(void* memory, std::size_t bytes) noexcept {
    if (memory == nullptr) return;
    std::memset(memory, 0, bytes);
    asm volatile("" : : "r"(memory) : "memory");
}

} // namespace ObLib
