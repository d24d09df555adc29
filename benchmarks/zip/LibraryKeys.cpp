// Takes the place of the archive service's own choice of cryptography in a second build of the
// module: keys come from mbed TLS's PBKDF2 instead of our SIMD one, everything else is the same.
// The benchmark compares both builds, which decides whether the SIMD code is worth keeping.
#include <mbedtls/md.h>
#include <mbedtls/pkcs5.h>

#include <stdexcept>

#include "services/archive/crypto/Ae2Algorithms.h"
#include "services/archive/crypto/SoftwareAe2.h"

namespace obarchive {
namespace {

class HashContext {
public:
    HashContext() {
        mbedtls_md_init(&context_);
        if (mbedtls_md_setup(&context_, mbedtls_md_info_from_type(MBEDTLS_MD_SHA1), 1) != 0) {
            throw std::runtime_error("cryptography");
        }
    }
    ~HashContext() { mbedtls_md_free(&context_); }
    HashContext(const HashContext&) = delete;
    HashContext& operator=(const HashContext&) = delete;

    mbedtls_md_context_t* Get() noexcept { return &context_; }

private:
    mbedtls_md_context_t context_;
};

class LibraryKeys : public SoftwareAe2 {
public:
    std::size_t KeysAtOnce(std::size_t) const noexcept override { return 1; }

    void Derive(const Secret& password, std::span<Ae2Keys> keys) const override {
        const auto text = password.Bytes();
        for (Ae2Keys& made : keys) {
            HashContext hash;
            const int result = mbedtls_pkcs5_pbkdf2_hmac(
                hash.Get(), text.data(), text.size(), made.salt.data(), made.SaltSize(),
                kAe2Iterations, static_cast<std::uint32_t>(made.DerivedSize()),
                made.derived.data());
            if (result != 0) throw std::runtime_error("cryptography");
        }
    }
};

} // namespace

Cryptography CryptographyToUse() { return Cryptography::Library; }

std::unique_ptr<Ae2Algorithms> MakeAe2Algorithms(Cryptography) {
    return std::make_unique<LibraryKeys>();
}

} // namespace obarchive
