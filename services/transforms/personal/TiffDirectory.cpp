#include "services/transforms/personal/TiffDirectory.h"

namespace transforms::personal {
namespace {

constexpr std::uint64_t kClassic = 42;
constexpr std::uint64_t kBig = 43;

} // namespace

std::size_t SizeOf(TiffType type) {
    switch (type) {
    case TiffType::Byte:
    case TiffType::Ascii:
    case TiffType::SignedByte:
    case TiffType::Undefined:
        return 1;
    case TiffType::Short:
    case TiffType::SignedShort:
        return 2;
    case TiffType::Long:
    case TiffType::SignedLong:
    case TiffType::Float:
    case TiffType::Directory:
        return 4;
    case TiffType::Rational:
    case TiffType::SignedRational:
    case TiffType::Double:
    case TiffType::Long8:
    case TiffType::SignedLong8:
    case TiffType::Directory8:
        return 8;
    }
    return 0;
}

std::optional<TiffReader> TiffReader::Open(Bytes file) {
    const bool isLittleEndian = StartsWith(file, "II");
    if (file.size() < 8 || (!isLittleEndian && !StartsWith(file, "MM"))) return std::nullopt;
    TiffReader reader(file, isLittleEndian);
    const std::uint64_t version = reader.Number(2, 2);
    if (version == kClassic) {
        reader.first_ = reader.Number(4, 4);
        return reader;
    }
    // The size of offsets, and a number that is reserved.
    if (version != kBig || file.size() < 16 ||
        reader.Number(4, 4) != (isLittleEndian ? 8 : 8 << 16)) {
        return std::nullopt;
    }
    reader.isBig_ = true;
    reader.first_ = reader.Number(8, 8);
    return reader;
}

bool TiffReader::IsInside(const Extent& extent) const {
    return extent.begin <= file_.size() && extent.size <= file_.size() - extent.begin;
}

std::uint64_t TiffReader::Number(std::uint64_t offset, std::size_t size) const {
    std::uint64_t number = 0;
    for (std::size_t at = 0; at < size; ++at) {
        const std::size_t place = isLittleEndian_ ? size - 1 - at : at;
        number = number << 8 | ByteAt(file_, static_cast<std::size_t>(offset) + place);
    }
    return number;
}

std::uint64_t TiffReader::NumberAt(const TiffEntry& entry, std::uint64_t at) const {
    const std::size_t size = SizeOf(entry.type);
    return Number(entry.value.begin + at * size, size);
}

TiffEntry TiffReader::ReadEntry(std::uint64_t offset) const {
    TiffEntry entry;
    entry.tag = static_cast<std::uint16_t>(Number(offset, 2));
    entry.type = static_cast<TiffType>(Number(offset + 2, 2));
    entry.count = Number(offset + 4, OffsetSize());
    entry.field = {offset + 4 + OffsetSize(), OffsetSize()};
    const std::size_t unit = SizeOf(entry.type);
    if (unit == 0 || entry.count > file_.size() / unit) return entry;
    const std::uint64_t size = entry.count * unit;
    entry.isInField = size <= OffsetSize();
    const std::uint64_t begin =
        entry.isInField ? entry.field.begin : Number(entry.field.begin, OffsetSize());
    entry.value = {begin, size};
    entry.isReadable = IsInside(entry.value);
    return entry;
}

std::optional<TiffDirectory> TiffReader::ReadDirectory(std::uint64_t offset) const {
    const std::size_t countSize = isBig_ ? 8 : 2;
    const std::size_t entrySize = 4 + 2 * OffsetSize();
    if (!IsInside({offset, countSize})) return std::nullopt;
    const std::uint64_t count = Number(offset, countSize);
    if (count > file_.size() / entrySize) return std::nullopt;
    TiffDirectory directory;
    directory.extent = {offset, countSize + count * entrySize};
    if (!IsInside(directory.extent)) return std::nullopt;
    directory.entries.reserve(static_cast<std::size_t>(count));
    for (std::uint64_t at = 0; at < count; ++at) {
        directory.entries.push_back(ReadEntry(offset + countSize + at * entrySize));
    }
    // Some writers end a block without the link to a next directory.
    const Extent link = {directory.extent.End(), OffsetSize()};
    if (IsInside(link)) {
        directory.next = Number(link.begin, OffsetSize());
        directory.extent.size += OffsetSize();
    }
    return directory;
}

} // namespace transforms::personal
