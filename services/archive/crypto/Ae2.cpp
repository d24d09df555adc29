#include "services/archive/crypto/Ae2.h"

#include <bcrypt.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace obarchive {
namespace {

void FillSalt(Ae2Keys& keys) {
    const NTSTATUS status =
        BCryptGenRandom(nullptr, keys.salt.data(), static_cast<ULONG>(keys.SaltSize()),
                        BCRYPT_USE_SYSTEM_PREFERRED_RNG);
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

} // namespace

Ae2Keys DeriveAe2Keys(const Ae2Algorithms& algorithms, const Secret& password,
                      std::span<const std::uint8_t> salt, std::size_t keySize) {
    Ae2Keys keys;
    keys.keySize = keySize;
    std::copy(salt.begin(), salt.end(), keys.salt.begin());
    algorithms.Derive(password, std::span(&keys, 1));
    return keys;
}

bool Ae2KeyMaker::TakeReady(Ae2Keys& keys) {
    const Locked locked(lock_);
    if (ready_.empty()) return false;
    keys = ready_.back();
    ready_.pop_back();
    return true;
}

Ae2Keys Ae2KeyMaker::Make() {
    Ae2Keys keys;
    if (TakeReady(keys)) return keys;
    std::vector<Ae2Keys> made(algorithms_.KeysAtOnce(keySize_));
    for (Ae2Keys& one : made) {
        one.keySize = keySize_;
        FillSalt(one);
    }
    algorithms_.Derive(password_, made);
    const Locked locked(lock_);
    ready_.insert(ready_.end(), made.begin() + 1, made.end());
    return made.front();
}

// Encrypts as many counters as the data still to come needs, in one call.
void Ae2Stream::MakeKeyStream(std::size_t wanted) {
    const std::size_t blocks =
        (std::min(wanted, kKeyStreamPiece) + kCipherBlock - 1) / kCipherBlock;
    static_cast<void>(keyStream_.Resize(blocks * kCipherBlock));
    for (std::size_t at = 0; at < keyStream_.Size(); at += kCipherBlock) {
        std::uint8_t* const place = keyStream_.Data() + at;
        std::memcpy(place, &counter_, sizeof counter_);
        std::memset(place + sizeof counter_, 0, kCipherBlock - sizeof counter_);
        ++counter_;
    }
    primitives_->EncryptBlocks(keyStream_.Bytes());
    used_ = 0;
}

void Ae2Stream::ApplyKeyStream(std::span<std::uint8_t> data) {
    while (!data.empty()) {
        if (used_ == keyStream_.Size()) MakeKeyStream(data.size());
        const std::size_t count = std::min(data.size(), keyStream_.Size() - used_);
        const std::uint8_t* const stream = keyStream_.Data() + used_;
        Xor(data.first(count), stream);
        used_ += count;
        data = data.subspan(count);
    }
}

void Ae2Stream::Encrypt(std::span<std::uint8_t> data) {
    ApplyKeyStream(data);
    AddToCode(data);
}

void Ae2Stream::CipherFrom(std::uint64_t offset, std::span<std::uint8_t> data) {
    counter_ = 1 + offset / kCipherBlock;
    used_ = keyStream_.Size();
    ApplyKeyStream(data);
}

std::array<std::uint8_t, kAe2CodeSize> Ae2Stream::Code() {
    const auto whole = primitives_->Code();
    std::array<std::uint8_t, kAe2CodeSize> code{};
    std::copy_n(whole.begin(), code.size(), code.begin());
    return code;
}

} // namespace obarchive
