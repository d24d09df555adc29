// The slow part of a key's derivation, PBKDF2 with HMAC by SHA-1, for several blocks side by side
// in the lanes of vector registers. It is a long chain of dependent steps, so that one alone leaves
// most of a processor idle.
#pragma once

#include <cstddef>
#include <cstdint>

namespace obarchive {

constexpr std::size_t kMostLanes = 8;
constexpr std::size_t kHashWords = 5;
constexpr std::size_t kBlockWords = 16;

// In words as the hash takes them, of big-endian bytes. Holds secrets: who makes it wipes it.
struct Pbkdf2Simd {
    std::uint32_t password[kBlockWords];          // one block, zeros behind
    std::uint32_t begin[kMostLanes][kBlockWords]; // salt, number and padding of each lane's block
    std::uint32_t iterations;                     // at least 1
    std::uint32_t result[kMostLanes][kHashWords];
};

// Fills the results of the first four or of all eight lanes. The work memory is wiped. Each only
// where the processor has it; all have four lanes. Rotating ones take about half of the time.
void DeriveFourLanes(Pbkdf2Simd& lanes) noexcept;
void DeriveEightLanes(Pbkdf2Simd& lanes) noexcept;
void DeriveEightLanesRotating(Pbkdf2Simd& lanes) noexcept;
bool HasEightLanes() noexcept;
bool HasEightLanesRotating() noexcept;

} // namespace obarchive
