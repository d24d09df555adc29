// The primitives by the library that is linked here, which uses the processor's own instructions
// for the cipher, and SIMD lanes for the keys.
#pragma once

#include "services/archive/crypto/Ae2Primitives.h"

namespace obarchive {

class SoftwareAe2 : public Ae2Algorithms {
public:
    std::size_t KeysAtOnce(std::size_t keySize) const noexcept override;
    void Derive(const Secret& password, std::span<Ae2Keys> keys) const override;
    std::unique_ptr<Ae2Primitives> Begin(const Ae2Keys& keys) const override;
};

} // namespace obarchive
