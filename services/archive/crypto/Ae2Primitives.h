// The primitives of encrypted entries, as interfaces: CngAe2 and SoftwareAe2 implement them and
// give the same bytes.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>

#include "services/archive/crypto/Ae2Keys.h"

namespace obarchive {

// Of one entry. One thread. Throws std::runtime_error when it fails; wipes its keys when it ends.
class Ae2Primitives {
public:
    virtual ~Ae2Primitives() = default;

    // AES on each block of 16 bytes, in place.
    virtual void EncryptBlocks(std::span<std::uint8_t> blocks) = 0;
    virtual void AddToCode(std::span<const std::uint8_t> data) = 0;
    virtual std::array<std::uint8_t, 20> Code() = 0;
};

// What a run gets its primitives from. Any thread.
class Ae2Algorithms {
public:
    virtual ~Ae2Algorithms() = default;

    // How many keys are derived in the time of one.
    virtual std::size_t KeysAtOnce(std::size_t keySize) const noexcept = 0;
    // Fills `derived` of each by its salt. No more than KeysAtOnce, all of one size. Throws
    // std::runtime_error when it fails.
    virtual void Derive(const Secret& password, std::span<Ae2Keys> keys) const = 0;
    // For one entry's keys, from the beginning of its code on. Throws like its calls.
    virtual std::unique_ptr<Ae2Primitives> Begin(const Ae2Keys& keys) const = 0;
};

} // namespace obarchive
