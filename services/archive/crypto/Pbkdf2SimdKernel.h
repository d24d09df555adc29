// The derivation on SIMD lanes, for any width of vector; included by one source file for each width
// and by nothing else. Those are compiled for different processors, so everything here is local to
// each, and nothing of the standard library is used that the linker might share between them.
#pragma once

#include "services/archive/crypto/Pbkdf2Simd.h"

namespace obarchive {
namespace {

// What is wiped at the end. The compiler may not leave the clearing out.
template <class Vector>
struct LaneWork {
    Vector inner[kHashWords]; // the states after the password's two blocks
    Vector outer[kHashWords];
    Vector words[kBlockWords]; // of the block that is hashed; used up by it
    Vector state[kHashWords];
    Vector sum[kHashWords];

    ~LaneWork() {
        auto* const bytes = reinterpret_cast<volatile unsigned char*>(this);
        for (std::size_t at = 0; at < sizeof *this; ++at) bytes[at] = 0;
    }
};

template <class Vector>
inline Vector Rotated(Vector value, int bits) {
    return value << bits | value >> (32 - bits);
}

template <class Vector>
inline Vector Mixed(unsigned round, Vector b, Vector c, Vector d) {
    if (round < 20) return (d ^ (b & (c ^ d))) + 0x5A827999U;
    if (round < 40) return (b ^ c ^ d) + 0x6ED9EBA1U;
    if (round < 60) return ((b & c) | (d & (b | c))) + 0x8F1BBCDCU;
    return (b ^ c ^ d) + 0xCA62C1D6U;
}

// The word of a round, made in place of the one of sixteen rounds before.
template <class Vector>
inline Vector Word(Vector* words, unsigned round) {
    Vector& word = words[round % kBlockWords];
    if (round >= kBlockWords) {
        word ^= words[(round + 13) % kBlockWords] ^ words[(round + 8) % kBlockWords] ^
                words[(round + 2) % kBlockWords];
        word = Rotated(word, 1);
    }
    return word;
}

// One block of SHA-1 on each SIMD lane: `state` becomes the state after `from`. Not inlined, as its
// code is ten kilobytes.
template <class Vector>
[[gnu::noinline]] void Hash(const Vector* from, Vector* words, Vector* state) {
    Vector a = from[0], b = from[1], c = from[2], d = from[3], e = from[4];
#pragma GCC unroll 80
    for (unsigned round = 0; round < 80; ++round) {
        const Vector next = Rotated(a, 5) + Mixed(round, b, c, d) + e + Word(words, round);
        e = d;
        d = c;
        c = Rotated(b, 30);
        b = a;
        a = next;
    }
    state[0] = from[0] + a;
    state[1] = from[1] + b;
    state[2] = from[2] + c;
    state[3] = from[3] + d;
    state[4] = from[4] + e;
}

template <class Vector>
void HashPassword(const Pbkdf2Simd& lanes, std::uint32_t pad, LaneWork<Vector>& work,
                  Vector* state) {
    constexpr std::uint32_t kBegin[] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
    Vector begin[kHashWords];
    for (std::size_t word = 0; word < kHashWords; ++word) begin[word] = Vector{} + kBegin[word];
    for (std::size_t word = 0; word < kBlockWords; ++word) {
        work.words[word] = Vector{} + (lanes.password[word] ^ pad);
    }
    Hash(begin, work.words, state);
}

// A block with a hash that follows one other block: its padding contains the length, 84 bytes.
template <class Vector>
inline void PutHash(LaneWork<Vector>& work) {
    for (std::size_t word = 0; word < kHashWords; ++word) work.words[word] = work.state[word];
    work.words[kHashWords] = Vector{} + 0x80000000U;
    for (std::size_t word = kHashWords + 1; word < kBlockWords - 1; ++word)
        work.words[word] = Vector{};
    work.words[kBlockWords - 1] = Vector{} + 84U * 8U;
}

// The rest of an HMAC whose inner block is in `words`.
template <class Vector>
inline void HashTwice(LaneWork<Vector>& work) {
    Hash(work.inner, work.words, work.state);
    PutHash(work);
    Hash(work.outer, work.words, work.state);
}

template <class Vector>
void DeriveLanes(Pbkdf2Simd& lanes) noexcept {
    constexpr std::size_t kLanes = sizeof(Vector) / sizeof(std::uint32_t);
    LaneWork<Vector> work;
    HashPassword(lanes, 0x36363636U, work, work.inner);
    HashPassword(lanes, 0x5C5C5C5CU, work, work.outer);
    for (std::size_t word = 0; word < kBlockWords; ++word) {
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            work.words[word][lane] = lanes.begin[lane][word];
        }
    }
    HashTwice(work);
    for (std::size_t word = 0; word < kHashWords; ++word) work.sum[word] = work.state[word];
    for (std::uint32_t turn = 1; turn < lanes.iterations; ++turn) {
        PutHash(work);
        HashTwice(work);
        for (std::size_t word = 0; word < kHashWords; ++word) work.sum[word] ^= work.state[word];
    }
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
        for (std::size_t word = 0; word < kHashWords; ++word) {
            lanes.result[lane][word] = work.sum[word][lane];
        }
    }
}

} // namespace
} // namespace obarchive
