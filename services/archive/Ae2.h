// The encrypted form of an entry's data, "AE-2": salt, two bytes to check the password by, the data
// in counter mode under AES, and an authentication code of ten bytes. All primitives are the
// platform's, in large pieces.
#pragma once

#include <windows.h>

#include <bcrypt.h>

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/archive/Secret.h"

namespace obarchive {

struct AlgorithmPolicy : ObLib::NullPolicy<BCRYPT_ALG_HANDLE> {
    static void Close(Handle handle) noexcept { BCryptCloseAlgorithmProvider(handle, 0); }
};
struct CipherKeyPolicy : ObLib::NullPolicy<BCRYPT_KEY_HANDLE> {
    static void Close(Handle handle) noexcept { BCryptDestroyKey(handle); }
};
struct HashPolicy : ObLib::NullPolicy<BCRYPT_HASH_HANDLE> {
    static void Close(Handle handle) noexcept { BCryptDestroyHash(handle); }
};
using UniqueAlgorithm = ObLib::UniqueResource<AlgorithmPolicy>;
using UniqueCipherKey = ObLib::UniqueResource<CipherKeyPolicy>;
using UniqueHash = ObLib::UniqueResource<HashPolicy>;

// The platform's algorithms for one run. Any thread.
class Ae2Algorithms {
public:
    Ae2Algorithms();
    bool IsThere() const noexcept { return cipher && code; }

    UniqueAlgorithm cipher; // AES, block by block
    UniqueAlgorithm code;   // HMAC by SHA-1
};

constexpr std::size_t kAe2CodeSize = 10;

// What a salt and the password make. Wiped when it ends; a copy wipes itself.
struct Ae2Keys {
    Ae2Keys() = default;
    Ae2Keys(const Ae2Keys&) = default;
    Ae2Keys& operator=(const Ae2Keys&) = default;
    ~Ae2Keys() { SecureZeroMemory(derived.data(), sizeof derived); }

    // What stands in front of the data: the salt, half as long as the key, and the check.
    std::array<std::uint8_t, 18> Head() const;
    std::size_t HeadSize() const noexcept { return keySize / 2 + 2; }

    std::size_t keySize = 0; // 16 or 32 bytes
    std::array<std::uint8_t, 16> salt{};
    // Cipher key, code key, check: keySize, keySize and 2 bytes.
    std::array<std::uint8_t, 66> derived{};
};

// Takes about a millisecond, by design of the format. Throws std::runtime_error when the platform
// fails.
Ae2Keys DeriveAe2Keys(const Ae2Algorithms& algorithms, const Secret& password,
                      std::span<const std::uint8_t> salt, std::size_t keySize);

// The same with a salt from the platform's random source.
Ae2Keys NewAe2Keys(const Ae2Algorithms& algorithms, const Secret& password, std::size_t keySize);

// One entry's stream, from its beginning on. One thread. Throws std::runtime_error when the
// platform fails.
class Ae2Stream {
public:
    Ae2Stream(const Ae2Algorithms& algorithms, const Ae2Keys& keys);
    ~Ae2Stream();

    // In place, the next bytes of the stream.
    void Encrypt(std::span<std::uint8_t> data);
    // The same without the code, for bytes that begin at `offset`, a multiple of 16.
    void CipherFrom(std::uint64_t offset, std::span<std::uint8_t> data);
    // Adds bytes that are encrypted already to the code.
    void AddToCode(std::span<const std::uint8_t> data);
    // The reverse; without looking at the code, for data of this run's own.
    void Decrypt(std::span<std::uint8_t> data) { ApplyKeyStream(data); }
    std::array<std::uint8_t, kAe2CodeSize> Code();

private:
    void ApplyKeyStream(std::span<std::uint8_t> data);
    void MakeKeyStream(std::size_t wanted);

    UniqueCipherKey key_;
    UniqueHash code_;
    std::uint64_t counter_ = 1;
    std::vector<std::uint8_t> keyStream_;
    std::size_t used_ = 0; // bytes of the key stream that were used
};

} // namespace obarchive
