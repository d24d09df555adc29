// The keys of an encrypted entry, made by a way of the test's own that never has one in the
// clear.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace obtest {

// A byte of the password by its place.
using PasswordByte = std::function<std::uint8_t(std::size_t)>;

// PBKDF2 by HMAC-SHA-1 with a thousand rounds: `size` bytes, each combined with `mask`. What it
// works with is wiped. The password has 64 bytes at most.
std::vector<std::uint8_t> MaskedKeys(std::size_t passwordSize, const PasswordByte& password,
                                     std::span<const std::uint8_t> salt, std::size_t size,
                                     std::uint8_t mask);

// The ten words of the states after the password's two pads, by which any of its keys could be
// made; each is combined with `mask` in every byte.
std::vector<std::uint32_t> MaskedPads(std::size_t passwordSize, const PasswordByte& password,
                                      std::uint8_t mask);

} // namespace obtest
