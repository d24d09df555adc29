#include "services/archive/zip/DuplicateFinder.h"

#include <stdexcept>

namespace obarchive {
namespace {

void Check(NTSTATUS status) {
    if (status < 0) throw std::runtime_error("platform cryptography");
}

} // namespace

ContentHash::ContentHash() {
    Check(BCryptOpenAlgorithmProvider(algorithm_.Put(), BCRYPT_SHA256_ALGORITHM, nullptr, 0));
    Check(BCryptCreateHash(algorithm_.Get(), hash_.Put(), nullptr, 0, nullptr, 0, 0));
}

void ContentHash::Add(std::span<const std::uint8_t> bytes) {
    // The platform's declaration knows no const.
    Check(BCryptHashData(hash_.Get(), const_cast<UCHAR*>(bytes.data()),
                         static_cast<ULONG>(bytes.size()), 0));
}

ContentDigest ContentHash::Finish() {
    ContentDigest digest{};
    Check(BCryptFinishHash(hash_.Get(), digest.data(), static_cast<ULONG>(digest.size()), 0));
    return digest;
}

DuplicateFinder::DuplicateFinder(const std::vector<std::uint64_t>& sizes) {
    for (const std::uint64_t size : sizes) ++sizes_[size];
}

bool DuplicateFinder::MayHaveDuplicate(std::uint64_t size) const {
    const auto found = sizes_.find(size);
    return size != 0 && found != sizes_.end() && found->second > 1;
}

std::optional<std::size_t> DuplicateFinder::FirstOf(std::uint64_t size, const ContentDigest& digest,
                                                    std::size_t file) {
    const auto [place, isFirst] = firsts_.try_emplace({size, digest}, file);
    if (isFirst) return std::nullopt;
    return place->second;
}

} // namespace obarchive
