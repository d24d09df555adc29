#include "services/archive/crypto/SoftwareAe2.h"

#include <mbedtls/aes.h>
#include <mbedtls/md.h>
#include <mbedtls/sha1.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "services/archive/crypto/Ae2Keys.h"
#include "services/archive/crypto/Pbkdf2Simd.h"

namespace obarchive {
namespace {

constexpr std::size_t kCipherBlock = 16;
constexpr std::size_t kHashBlock = kBlockWords * sizeof(std::uint32_t);
constexpr std::size_t kHashSize = kHashWords * sizeof(std::uint32_t);

void Check(int result) {
    if (result != 0) throw std::runtime_error("cryptography");
}

class Cipher {
public:
    explicit Cipher(std::span<const std::uint8_t> key) {
        mbedtls_aes_init(&context_);
        Check(mbedtls_aes_setkey_enc(&context_, key.data(), static_cast<unsigned>(key.size() * 8)));
    }
    ~Cipher() { mbedtls_aes_free(&context_); } // wipes it
    Cipher(const Cipher&) = delete;
    Cipher& operator=(const Cipher&) = delete;

    void EncryptBlock(std::uint8_t* block) {
        Check(mbedtls_aes_crypt_ecb(&context_, MBEDTLS_AES_ENCRYPT, block, block));
    }

private:
    mbedtls_aes_context context_;
};

class CodeMaker {
public:
    explicit CodeMaker(std::span<const std::uint8_t> key) {
        mbedtls_md_init(&context_);
        const bool begun =
            mbedtls_md_setup(&context_, mbedtls_md_info_from_type(MBEDTLS_MD_SHA1), 1) == 0 &&
            mbedtls_md_hmac_starts(&context_, key.data(), key.size()) == 0;
        if (begun) return;
        mbedtls_md_free(&context_);
        throw std::runtime_error("cryptography");
    }
    ~CodeMaker() { mbedtls_md_free(&context_); } // wipes it
    CodeMaker(const CodeMaker&) = delete;
    CodeMaker& operator=(const CodeMaker&) = delete;

    void Add(std::span<const std::uint8_t> data) {
        Check(mbedtls_md_hmac_update(&context_, data.data(), data.size()));
    }
    void Finish(std::uint8_t* code) { Check(mbedtls_md_hmac_finish(&context_, code)); }

private:
    mbedtls_md_context_t context_;
};

class Primitives : public Ae2Primitives {
public:
    explicit Primitives(const Ae2Keys& keys) : cipher_(keys.CipherKey()), code_(keys.CodeKey()) {
        ForgetRegisters();
    }

    void EncryptBlocks(std::span<std::uint8_t> blocks) override {
        for (std::size_t at = 0; at < blocks.size(); at += kCipherBlock) {
            cipher_.EncryptBlock(blocks.data() + at);
        }
        ForgetRegisters(); // a round's key, from which a shorter cipher key can be computed
    }
    void AddToCode(std::span<const std::uint8_t> data) override { code_.Add(data); }
    std::array<std::uint8_t, 20> Code() override {
        std::array<std::uint8_t, 20> whole{};
        code_.Finish(whole.data());
        return whole;
    }

private:
    Cipher cipher_;
    CodeMaker code_;
};

// Bytes as the hash's words, and back.
void ToWords(const std::uint8_t* bytes, std::uint32_t* words) {
    std::memcpy(words, bytes, kHashBlock);
    for (std::size_t at = 0; at < kBlockWords; ++at) words[at] = __builtin_bswap32(words[at]);
}

void ToBytes(const std::uint32_t* words, std::uint8_t* bytes, std::size_t count) {
    std::uint8_t whole[kHashSize];
    for (std::size_t at = 0; at < kHashWords; ++at) {
        const std::uint32_t word = __builtin_bswap32(words[at]);
        std::memcpy(whole + at * sizeof word, &word, sizeof word);
    }
    std::memcpy(bytes, whole, count);
    SecureZeroMemory(whole, sizeof whole);
}

// A longer password counts by its hash.
void PutPassword(const Secret& password, Pbkdf2Simd& lanes) {
    const std::span<const std::uint8_t> text = password.Bytes();
    WipedBuffer<std::uint8_t, kHashBlock> block;
    if (text.size() > kHashBlock) {
        Check(mbedtls_sha1_ret(text.data(), text.size(), block.data));
    } else {
        std::copy(text.begin(), text.end(), block.data);
    }
    ToWords(block.data, lanes.password);
}

// The first message of a block: salt and number of the block. The hash takes it after the password.
void PutBegin(const Ae2Keys& keys, std::size_t number, std::uint32_t* begin) {
    std::uint8_t block[kHashBlock] = {};
    const std::size_t size = keys.SaltSize();
    std::copy_n(keys.salt.begin(), size, block);
    block[size + 3] = static_cast<std::uint8_t>(number + 1);
    block[size + 4] = 0x80;
    ToWords(block, begin);
    begin[kBlockWords - 1] = static_cast<std::uint32_t>((kHashBlock + size + 4) * 8);
}

std::size_t BlocksOf(std::size_t keySize) {
    return (2 * keySize + kAe2CheckSize + kHashSize - 1) / kHashSize;
}

std::size_t Lanes() noexcept { return HasEightLanes() ? 8 : 4; }

void DeriveLanes(Pbkdf2Simd& lanes, std::size_t used) {
    if (used <= 4) return DeriveFourLanes(lanes);
    HasEightLanesRotating() ? DeriveEightLanesRotating(lanes) : DeriveEightLanes(lanes);
}

} // namespace

std::size_t SoftwareAe2::KeysAtOnce(std::size_t keySize) const noexcept {
    return Lanes() / BlocksOf(keySize);
}

void SoftwareAe2::Derive(const Secret& password, std::span<Ae2Keys> keys) const {
    struct Wiped : Pbkdf2Simd {
        ~Wiped() { SecureZeroMemory(static_cast<Pbkdf2Simd*>(this), sizeof(Pbkdf2Simd)); }
    } lanes{};
    lanes.iterations = kAe2Iterations;
    PutPassword(password, lanes);
    std::size_t lane = 0;
    for (const Ae2Keys& made : keys) {
        for (std::size_t block = 0; block < BlocksOf(made.keySize); ++block) {
            PutBegin(made, block, lanes.begin[lane++]);
        }
    }
    DeriveLanes(lanes, lane);
    lane = 0;
    for (Ae2Keys& made : keys) {
        for (std::size_t at = 0; at < made.DerivedSize(); at += kHashSize) {
            ToBytes(lanes.result[lane++], made.derived.data() + at,
                    std::min(kHashSize, made.DerivedSize() - at));
        }
    }
    ForgetRegisters();
}

std::unique_ptr<Ae2Primitives> SoftwareAe2::Begin(const Ae2Keys& keys) const {
    return std::make_unique<Primitives>(keys);
}

} // namespace obarchive
