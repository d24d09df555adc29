// The slow part of a key's derivation, PBKDF2 with HMAC by SHA-1, for several blocks side by side
// in the SIMD lanes of vector registers. A derivation is a long chain of dependent steps, so that
// one alone leaves most of a processor idle.
#pragma once

#include <cstddef>
#include <cstdint>

namespace obarchive {

constexpr std::size_t kMostLanes = 8;
constexpr std::size_t kHashWords = 5;
constexpr std::size_t kBlockWords = 16;

// In 32-bit words as the hash takes them, of big-endian bytes. Contains secrets: its owner wipes
// it.
struct Pbkdf2Simd {
    std::uint32_t password[kBlockWords];          // one block, padded with zeros
    std::uint32_t begin[kMostLanes][kBlockWords]; // a block each: salt, number, padding
    std::uint32_t iterations;                     // at least 1
    std::uint32_t result[kMostLanes][kHashWords];
};

// Writes the keys of the first four or of all eight SIMD lanes. The work memory is wiped. Every
// processor has four; call the others only where the processor has them. Those that rotate take
// about half of the time.
void DeriveFourLanes(Pbkdf2Simd& lanes) noexcept;
void DeriveEightLanes(Pbkdf2Simd& lanes) noexcept;
void DeriveEightLanesRotating(Pbkdf2Simd& lanes) noexcept;
bool HasEightLanes() noexcept;
bool HasEightLanesRotating() noexcept;

} // namespace obarchive
