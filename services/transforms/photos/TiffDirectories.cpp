#include "services/transforms/photos/TiffDirectories.h"

#include <algorithm>
#include <iterator>

#include "services/transforms/raster/Numbers.h"

namespace transforms {
namespace {

constexpr std::uint32_t kShort = 3, kLong = 4, kDirectory = 13;
constexpr std::uint32_t kMostEntries = 1000; // a camera writes about fifty
// Bytes of one value, by the type's number.
constexpr std::uint32_t kTypeSizes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4};

} // namespace

const TiffEntry* FindEntry(const std::vector<TiffEntry>& entries, std::uint32_t tag) noexcept {
    const auto found = std::ranges::find(entries, tag, &TiffEntry::tag);
    return found == entries.end() ? nullptr : &*found;
}

TiffDirectories::TiffDirectories(PictureSource& source) : source_(source) {
    std::uint8_t begin[4];
    if (ReadPicture(source, 0, begin) != sizeof begin || begin[0] != begin[1]) return;
    isLittle_ = begin[0] == 'I';
    constexpr std::uint32_t kTiff = 42, kJpegXr = 0xBC, kJpegXrNext = 0x1BC;
    const std::uint32_t kind = Get(2, 2);
    if (kind == kTiff || kind == kJpegXr || kind == kJpegXrNext) first_ = Get(4, 4);
}

// Zero past the end.
std::uint32_t TiffDirectories::Get(std::uint64_t at, std::size_t count) const {
    std::uint8_t bytes[4];
    if (ReadPicture(source_, at, {bytes, count}) != count) return 0;
    return StoredNumber({bytes, count}, isLittle_);
}

std::vector<TiffEntry> TiffDirectories::Entries(std::uint32_t offset) const {
    std::vector<TiffEntry> entries;
    const std::uint32_t count = offset ? std::min(Get(offset, 2), kMostEntries) : 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint64_t at = std::uint64_t{offset} + 2 + 12 * std::uint64_t{i};
        TiffEntry entry{Get(at, 2), Get(at + 2, 2), Get(at + 4, 4)};
        if (entry.type >= std::size(kTypeSizes)) continue;
        entry.size = std::uint64_t{entry.count} * kTypeSizes[entry.type];
        entry.at = entry.size <= 4 ? at + 8 : Get(at + 8, 4);
        if (entry.size && entry.at + entry.size <= source_.Size()) entries.push_back(entry);
    }
    return entries;
}

std::uint32_t TiffDirectories::Number(const TiffEntry& entry) const {
    if (entry.type == kShort) return Get(entry.at, 2);
    return entry.type == kLong || entry.type == kDirectory ? Get(entry.at, 4) : 0;
}

PictureBytes TiffDirectories::Value(const TiffEntry& entry) const {
    PictureBytes bytes(static_cast<std::size_t>(entry.size));
    bytes.resize(ReadPicture(source_, entry.at, bytes));
    return bytes;
}

} // namespace transforms
