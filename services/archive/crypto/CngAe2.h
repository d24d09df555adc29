// The primitives by the system's cryptography.
#pragma once

#include "services/archive/crypto/Ae2Primitives.h"
#include "services/archive/crypto/SystemHandles.h"

namespace obarchive {

class CngAe2 : public Ae2Algorithms {
public:
    CngAe2();
    bool IsThere() const noexcept { return cipher_ && code_; }

    std::size_t KeysAtOnce(std::size_t) const noexcept override { return 1; }
    void Derive(const Secret& password, std::span<Ae2Keys> keys) const override;
    std::unique_ptr<Ae2Primitives> Begin(const Ae2Keys& keys) const override;

private:
    UniqueAlgorithm cipher_; // AES, block by block
    UniqueAlgorithm code_;   // HMAC by SHA-1
};

} // namespace obarchive
