#include "services/archive/Ae2.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace obarchive {
namespace {

constexpr std::size_t kCipherBlock = 16;
constexpr std::size_t kKeyStreamPiece = 64 * 1024;
constexpr ULONGLONG kIterations = 1000; // of the format

void Check(NTSTATUS status) {
    if (status < 0) throw std::runtime_error("platform cryptography");
}

void Xor(std::span<std::uint8_t> data, const std::uint8_t* with) {
    std::size_t at = 0;
    for (std::uint64_t one = 0, other = 0; at + sizeof one <= data.size(); at += sizeof one) {
        std::memcpy(&one, data.data() + at, sizeof one);
        std::memcpy(&other, with + at, sizeof other);
        one ^= other;
        std::memcpy(data.data() + at, &one, sizeof one);
    }
    for (; at < data.size(); ++at) data[at] ^= with[at];
}

UCHAR* Mutable(std::span<const std::uint8_t> bytes) {
    return const_cast<UCHAR*>(bytes.data()); // the platform's declarations know no const
}

} // namespace

Ae2Algorithms::Ae2Algorithms() {
    BCRYPT_ALG_HANDLE opened = nullptr;
    if (BCryptOpenAlgorithmProvider(&opened, BCRYPT_AES_ALGORITHM, nullptr, 0) >= 0) {
        cipher = UniqueAlgorithm(opened);
        wchar_t mode[] = BCRYPT_CHAIN_MODE_ECB;
        const NTSTATUS set = BCryptSetProperty(opened, BCRYPT_CHAINING_MODE,
                                               reinterpret_cast<UCHAR*>(mode), sizeof mode, 0);
        if (set < 0) cipher.Reset();
    }
    if (BCryptOpenAlgorithmProvider(&opened, BCRYPT_SHA1_ALGORITHM, nullptr,
                                    BCRYPT_ALG_HANDLE_HMAC_FLAG) >= 0) {
        code = UniqueAlgorithm(opened);
    }
}

std::array<std::uint8_t, 18> Ae2Keys::Head() const {
    std::array<std::uint8_t, 18> head{};
    std::copy_n(salt.begin(), keySize / 2, head.begin());
    std::copy_n(derived.begin() + static_cast<std::ptrdiff_t>(2 * keySize), 2,
                head.begin() + static_cast<std::ptrdiff_t>(keySize / 2));
    return head;
}

Ae2Keys DeriveAe2Keys(const Ae2Algorithms& algorithms, const Secret& password,
                      std::span<const std::uint8_t> salt, std::size_t keySize) {
    Ae2Keys keys;
    keys.keySize = keySize;
    std::copy(salt.begin(), salt.end(), keys.salt.begin());
    const std::span<const std::uint8_t> text(reinterpret_cast<const std::uint8_t*>(password.Text()),
                                             std::strlen(password.Text()));
    Check(BCryptDeriveKeyPBKDF2(algorithms.code.Get(), Mutable(text),
                                static_cast<ULONG>(text.size()), keys.salt.data(),
                                static_cast<ULONG>(salt.size()), kIterations, keys.derived.data(),
                                static_cast<ULONG>(2 * keySize + 2), 0));
    return keys;
}

Ae2Keys NewAe2Keys(const Ae2Algorithms& algorithms, const Secret& password, std::size_t keySize) {
    std::array<std::uint8_t, 16> salt{};
    const auto used = std::span(salt).first(keySize / 2);
    Check(BCryptGenRandom(nullptr, used.data(), static_cast<ULONG>(used.size()),
                          BCRYPT_USE_SYSTEM_PREFERRED_RNG));
    return DeriveAe2Keys(algorithms, password, used, keySize);
}

Ae2Stream::Ae2Stream(const Ae2Algorithms& algorithms, const Ae2Keys& keys) {
    const auto size = static_cast<ULONG>(keys.keySize);
    const std::span<const std::uint8_t> derived(keys.derived);
    Check(BCryptGenerateSymmetricKey(algorithms.cipher.Get(), key_.Put(), nullptr, 0,
                                     Mutable(derived), size, 0));
    Check(BCryptCreateHash(algorithms.code.Get(), code_.Put(), nullptr, 0,
                           Mutable(derived.subspan(keys.keySize)), size, 0));
}

Ae2Stream::~Ae2Stream() {
    if (!keyStream_.empty()) SecureZeroMemory(keyStream_.data(), keyStream_.size());
}

// Encrypts as many counters as the data still to come needs, in one call.
void Ae2Stream::MakeKeyStream(std::size_t wanted) {
    const std::size_t blocks =
        (std::min(wanted, kKeyStreamPiece) + kCipherBlock - 1) / kCipherBlock;
    keyStream_.resize(blocks * kCipherBlock);
    for (std::size_t block = 0; block < blocks; ++block) {
        std::uint8_t* const place = keyStream_.data() + block * kCipherBlock;
        std::memcpy(place, &counter_, sizeof counter_);
        std::memset(place + sizeof counter_, 0, kCipherBlock - sizeof counter_);
        ++counter_;
    }
    ULONG made = 0;
    const auto size = static_cast<ULONG>(keyStream_.size());
    Check(BCryptEncrypt(key_.Get(), keyStream_.data(), size, nullptr, nullptr, 0, keyStream_.data(),
                        size, &made, 0));
    if (made != size) throw std::runtime_error("platform cryptography");
    used_ = 0;
}

void Ae2Stream::ApplyKeyStream(std::span<std::uint8_t> data) {
    while (!data.empty()) {
        if (used_ == keyStream_.size()) MakeKeyStream(data.size());
        const std::size_t count = std::min(data.size(), keyStream_.size() - used_);
        const std::uint8_t* const stream = keyStream_.data() + used_;
        Xor(data.first(count), stream);
        used_ += count;
        data = data.subspan(count);
    }
}

void Ae2Stream::AddToCode(std::span<const std::uint8_t> data) {
    Check(BCryptHashData(code_.Get(), Mutable(data), static_cast<ULONG>(data.size()), 0));
}

void Ae2Stream::Encrypt(std::span<std::uint8_t> data) {
    ApplyKeyStream(data);
    AddToCode(data);
}

void Ae2Stream::CipherFrom(std::uint64_t offset, std::span<std::uint8_t> data) {
    counter_ = 1 + offset / kCipherBlock;
    used_ = keyStream_.size();
    ApplyKeyStream(data);
}

std::array<std::uint8_t, kAe2CodeSize> Ae2Stream::Code() {
    std::array<std::uint8_t, 20> whole{};
    Check(BCryptFinishHash(code_.Get(), whole.data(), static_cast<ULONG>(whole.size()), 0));
    std::array<std::uint8_t, kAe2CodeSize> code{};
    std::copy_n(whole.begin(), code.size(), code.begin());
    return code;
}

} // namespace obarchive
