// Which files of a run have the same content.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "services/archive/crypto/SystemHandles.h"

namespace obarchive {

using ContentDigest = std::array<std::uint8_t, 32>;

// SHA-256 by the platform, in pieces. Throws std::runtime_error when the platform fails.
class ContentHash {
public:
    ContentHash();
    void Add(std::span<const std::uint8_t> bytes);
    ContentDigest Finish();

private:
    UniqueAlgorithm algorithm_;
    UniqueHash hash_;
};

// Only files of one size can be equal, so that most files are never hashed. Used on
// the run's thread only.
class DuplicateFinder {
public:
    // The sizes of all files of the run.
    explicit DuplicateFinder(const std::vector<std::uint64_t>& sizes);

    bool MayHaveDuplicate(std::uint64_t size) const;

    // The first file with the same content; none when `file` is itself the first.
    std::optional<std::size_t> FirstOf(std::uint64_t size, const ContentDigest& digest,
                                       std::size_t file);

private:
    std::map<std::uint64_t, unsigned> sizes_;
    std::map<std::pair<std::uint64_t, ContentDigest>, std::size_t> firsts_;
};

} // namespace obarchive
