#include "tests/unit/services/archive/crypto/MaskedKeys.h"

#include <windows.h>

#include <array>
#include <bit>

namespace obtest {
namespace {

constexpr std::size_t kBlock = 64;
constexpr std::size_t kDigest = 20;
constexpr std::size_t kRounds = 1000;

using State = std::array<std::uint32_t, 5>;
using Block = std::array<std::uint8_t, kBlock>;

constexpr State kStart = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};

std::uint32_t Mix(std::size_t step, const State& now) {
    const auto [a, b, c, d, e] = now;
    if (step < 20) return ((b & c) | (~b & d)) + 0x5A827999;
    if (step < 40) return (b ^ c ^ d) + 0x6ED9EBA1;
    if (step < 60) return ((b & c) | (b & d) | (c & d)) + 0x8F1BBCDC;
    return (b ^ c ^ d) + 0xCA62C1D6;
}

State Compress(const State& before, const Block& block) {
    std::uint32_t words[80];
    for (std::size_t word = 0; word < 16; ++word) {
        words[word] = std::uint32_t{block[4 * word]} << 24 | block[4 * word + 1] << 16 |
                      block[4 * word + 2] << 8 | block[4 * word + 3];
    }
    for (std::size_t word = 16; word < 80; ++word) {
        words[word] =
            std::rotl(words[word - 3] ^ words[word - 8] ^ words[word - 14] ^ words[word - 16], 1);
    }
    State now = before;
    for (std::size_t step = 0; step < 80; ++step) {
        const std::uint32_t next = std::rotl(now[0], 5) + Mix(step, now) + now[4] + words[step];
        now = {next, now[0], std::rotl(now[1], 30), now[2], now[3]};
    }
    for (std::size_t part = 0; part < now.size(); ++part) now[part] += before[part];
    SecureZeroMemory(words, sizeof words);
    return now;
}

// The state after a block of the password's bytes, each combined with `with`.
State PadState(std::size_t size, const PasswordByte& password, std::uint8_t with) {
    Block pad;
    for (std::size_t at = 0; at < kBlock; ++at) {
        pad[at] = static_cast<std::uint8_t>((at < size ? password(at) : 0) ^ with);
    }
    const State state = Compress(kStart, pad);
    SecureZeroMemory(pad.data(), pad.size());
    return state;
}

// The digest after a pad's state and `size` bytes, fewer than 56, that `block` begins with.
State Finish(const State& pad, Block block, std::size_t size) {
    const std::size_t bits = (kBlock + size) * 8;
    block[size] = 0x80;
    for (std::size_t at = size + 1; at < kBlock; ++at) block[at] = 0;
    block[kBlock - 2] = static_cast<std::uint8_t>(bits >> 8);
    block[kBlock - 1] = static_cast<std::uint8_t>(bits);
    return Compress(pad, block);
}

Block BytesOf(const State& state) {
    Block bytes{};
    for (std::size_t at = 0; at < kDigest; ++at) {
        bytes[at] = static_cast<std::uint8_t>(state[at / 4] >> (24 - 8 * (at % 4)));
    }
    return bytes;
}

} // namespace

std::vector<std::uint8_t> MaskedKeys(std::size_t passwordSize, const PasswordByte& password,
                                     std::span<const std::uint8_t> salt, std::size_t size,
                                     std::uint8_t mask) {
    const State inner = PadState(passwordSize, password, 0x36);
    const State outer = PadState(passwordSize, password, 0x5C);
    std::vector<std::uint8_t> keys;
    for (std::uint8_t number = 1; keys.size() < size; ++number) {
        Block turn{};
        std::copy(salt.begin(), salt.end(), turn.begin());
        turn[salt.size() + 3] = number;
        std::size_t length = salt.size() + 4;
        std::array<std::uint8_t, kDigest> sum;
        sum.fill(mask);
        for (std::size_t round = 0; round < kRounds; ++round) {
            turn = BytesOf(Finish(outer, BytesOf(Finish(inner, turn, length)), kDigest));
            length = kDigest;
            for (std::size_t at = 0; at < kDigest; ++at) sum[at] ^= turn[at];
        }
        keys.insert(keys.end(), sum.begin(), sum.end());
    }
    keys.resize(size);
    return keys;
}

std::vector<std::uint32_t> MaskedPads(std::size_t passwordSize, const PasswordByte& password,
                                      std::uint8_t mask) {
    std::vector<std::uint32_t> pads;
    for (const std::uint8_t with : {std::uint8_t{0x36}, std::uint8_t{0x5C}}) {
        for (const std::uint32_t word : PadState(passwordSize, password, with)) {
            pads.push_back(word ^ mask * 0x01010101U);
        }
    }
    return pads;
}

} // namespace obtest
