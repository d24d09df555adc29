// The keys of one encrypted entry, and the numbers of the format "AE-2".
#pragma once

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include "services/archive/crypto/Secret.h"

namespace obarchive {

constexpr std::size_t kAe2CodeSize = 10;
constexpr std::size_t kAe2CheckSize = 2;
constexpr unsigned kAe2Iterations = 1000; // of a key's derivation

// What a salt and the password make. Wiped when it ends; a copy wipes itself.
struct Ae2Keys {
    Ae2Keys() = default;
    Ae2Keys(const Ae2Keys& other)
        : keySize(other.keySize), salt(other.salt), derived(other.derived) {
        ForgetRegisters();
    }
    Ae2Keys& operator=(const Ae2Keys& other) {
        keySize = other.keySize;
        salt = other.salt;
        derived = other.derived;
        ForgetRegisters();
        return *this;
    }
    ~Ae2Keys() { SecureZeroMemory(derived.data(), sizeof derived); }

    // What precedes the data: the salt, half as long as the key, and the check.
    std::array<std::uint8_t, 18> Head() const {
        std::array<std::uint8_t, 18> head{};
        std::copy_n(salt.begin(), SaltSize(), head.begin());
        std::copy_n(derived.begin() + static_cast<std::ptrdiff_t>(2 * keySize), kAe2CheckSize,
                    head.begin() + static_cast<std::ptrdiff_t>(SaltSize()));
        return head;
    }
    std::size_t HeadSize() const noexcept { return SaltSize() + kAe2CheckSize; }

    std::size_t SaltSize() const noexcept { return keySize / 2; }
    std::size_t DerivedSize() const noexcept { return 2 * keySize + kAe2CheckSize; }
    std::span<const std::uint8_t> CipherKey() const { return {derived.data(), keySize}; }
    std::span<const std::uint8_t> CodeKey() const { return {derived.data() + keySize, keySize}; }

    std::size_t keySize = 0; // 16 or 32 bytes
    std::array<std::uint8_t, 16> salt{};
    // Cipher key, code key, check: keySize, keySize and 2 bytes.
    std::array<std::uint8_t, 66> derived{};
};

} // namespace obarchive
