#include "services/archive/crypto/CngAe2.h"

#include <stdexcept>

#include "services/archive/crypto/Ae2Keys.h"

namespace obarchive {
namespace {

void Check(NTSTATUS status) {
    if (status < 0) throw std::runtime_error("platform cryptography");
}

UCHAR* Mutable(std::span<const std::uint8_t> bytes) {
    return const_cast<UCHAR*>(bytes.data()); // the platform's declarations know no const
}

class Primitives : public Ae2Primitives {
public:
    Primitives(BCRYPT_ALG_HANDLE cipher, BCRYPT_ALG_HANDLE code, const Ae2Keys& keys) {
        Check(BCryptGenerateSymmetricKey(cipher, key_.Put(), nullptr, 0, Mutable(keys.CipherKey()),
                                         static_cast<ULONG>(keys.keySize), 0));
        Check(BCryptCreateHash(code, code_.Put(), nullptr, 0, Mutable(keys.CodeKey()),
                               static_cast<ULONG>(keys.keySize), 0));
    }

    void EncryptBlocks(std::span<std::uint8_t> blocks) override {
        const auto size = static_cast<ULONG>(blocks.size());
        ULONG made = 0;
        Check(BCryptEncrypt(key_.Get(), blocks.data(), size, nullptr, nullptr, 0, blocks.data(),
                            size, &made, 0));
        if (made != size) throw std::runtime_error("platform cryptography");
    }

    void AddToCode(std::span<const std::uint8_t> data) override {
        Check(BCryptHashData(code_.Get(), Mutable(data), static_cast<ULONG>(data.size()), 0));
    }

    std::array<std::uint8_t, 20> Code() override {
        std::array<std::uint8_t, 20> whole{};
        Check(BCryptFinishHash(code_.Get(), whole.data(), static_cast<ULONG>(whole.size()), 0));
        return whole;
    }

private:
    UniqueCipherKey key_;
    UniqueHash code_;
};

} // namespace

CngAe2::CngAe2() {
    BCRYPT_ALG_HANDLE opened = nullptr;
    if (BCryptOpenAlgorithmProvider(&opened, BCRYPT_AES_ALGORITHM, nullptr, 0) >= 0) {
        cipher_ = UniqueAlgorithm(opened);
        wchar_t mode[] = BCRYPT_CHAIN_MODE_ECB;
        const NTSTATUS set = BCryptSetProperty(opened, BCRYPT_CHAINING_MODE,
                                               reinterpret_cast<UCHAR*>(mode), sizeof mode, 0);
        if (set < 0) cipher_.Reset();
    }
    if (BCryptOpenAlgorithmProvider(&opened, BCRYPT_SHA1_ALGORITHM, nullptr,
                                    BCRYPT_ALG_HANDLE_HMAC_FLAG) >= 0) {
        code_ = UniqueAlgorithm(opened);
    }
}

void CngAe2::Derive(const Secret& password, std::span<Ae2Keys> keys) const {
    const std::span<const std::uint8_t> text = password.Bytes();
    for (Ae2Keys& made : keys) {
        Check(BCryptDeriveKeyPBKDF2(code_.Get(), Mutable(text), static_cast<ULONG>(text.size()),
                                    made.salt.data(), static_cast<ULONG>(made.SaltSize()),
                                    kAe2Iterations, made.derived.data(),
                                    static_cast<ULONG>(made.DerivedSize()), 0));
    }
}

std::unique_ptr<Ae2Primitives> CngAe2::Begin(const Ae2Keys& keys) const {
    return std::make_unique<Primitives>(cipher_.Get(), code_.Get(), keys);
}

} // namespace obarchive
