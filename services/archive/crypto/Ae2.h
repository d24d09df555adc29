// The encrypted form of an entry's data, "AE-2": salt, two bytes to check the password by, the data
// in counter mode under AES, and an authentication code of ten bytes.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "services/archive/compress/ByteBuffer.h"
#include "services/archive/compress/Monitor.h"
#include "services/archive/crypto/Ae2Keys.h"
#include "services/archive/crypto/Ae2Primitives.h"
#include "services/archive/crypto/Secret.h"

namespace obarchive {

// Takes a fraction of a millisecond or more, by design of the format. Throws std::runtime_error
// when it fails.
Ae2Keys DeriveAe2Keys(const Ae2Algorithms& algorithms, const Secret& password,
                      std::span<const std::uint8_t> salt, std::size_t keySize);

// Keys for the entries of a run, each with a salt of its own from the platform's random source. Any
// thread. Where several keys are made in the time of one, the others are kept for the next entries,
// and wiped at the end.
class Ae2KeyMaker {
public:
    // Both must outlive it.
    Ae2KeyMaker(const Ae2Algorithms& algorithms, const Secret& password, std::size_t keySize)
        : algorithms_(algorithms), password_(password), keySize_(keySize) {}

    // Throws std::runtime_error when it fails.
    Ae2Keys Make();

private:
    bool TakeReady(Ae2Keys& keys);

    const Ae2Algorithms& algorithms_;
    const Secret& password_;
    const std::size_t keySize_;
    Lock lock_;
    std::vector<Ae2Keys> ready_; // under the lock
};

// One entry's stream, from its beginning on. One thread. Throws std::runtime_error when the
// cryptography fails.
class Ae2Stream {
public:
    Ae2Stream(const Ae2Algorithms& algorithms, const Ae2Keys& keys)
        : primitives_(algorithms.Begin(keys)) {}
    ~Ae2Stream() { SecureZeroMemory(keyStream_.Data(), keyStream_.Capacity()); }
    Ae2Stream(const Ae2Stream&) = delete;
    Ae2Stream& operator=(const Ae2Stream&) = delete;

    // In place, the next bytes of the stream.
    void Encrypt(std::span<std::uint8_t> data);
    // The same without the code, for bytes that begin at `offset`, a multiple of 16.
    void CipherFrom(std::uint64_t offset, std::span<std::uint8_t> data);
    // Adds bytes that are encrypted already to the code.
    void AddToCode(std::span<const std::uint8_t> data) { primitives_->AddToCode(data); }
    // The reverse; without looking at the code, for data of this run's own.
    void Decrypt(std::span<std::uint8_t> data) { ApplyKeyStream(data); }
    std::array<std::uint8_t, kAe2CodeSize> Code();

private:
    static constexpr std::size_t kCipherBlock = 16;
    static constexpr std::size_t kKeyStreamPiece = 16 * 1024; // stays in the nearest memory

    void ApplyKeyStream(std::span<std::uint8_t> data);
    void MakeKeyStream(std::size_t wanted);

    std::unique_ptr<Ae2Primitives> primitives_;
    std::uint64_t counter_ = 1;
    ByteBuffer keyStream_{kKeyStreamPiece};
    std::size_t used_ = 0; // bytes of the key stream that were used
};

} // namespace obarchive
