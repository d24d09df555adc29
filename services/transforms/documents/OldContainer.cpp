#include "services/transforms/documents/OldContainer.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace transforms::documents {
namespace {

using namespace personal;
using namespace std::string_view_literals;

constexpr std::size_t kHeaderSize = 512;
constexpr std::size_t kDirectoryAt = 48; // in the header: the directory's first sector
constexpr std::size_t kEntrySize = 128;  // of the directory
constexpr std::size_t kTypeAt = 66;
constexpr std::size_t kStartAt = 116;
constexpr std::size_t kSizeAt = 120;
constexpr unsigned kStream = 2;
constexpr unsigned kRoot = 5;
constexpr std::size_t kSmallSize = 64;          // of a small stream's sectors
constexpr std::uint32_t kLeastInSectors = 4096; // smaller streams are stored elsewhere
constexpr std::size_t kShiftAt = 30;            // in the header: sectors of 512 or 4096 bytes

std::uint32_t LittleEndian16(Bytes bytes, std::size_t at) {
    return std::uint32_t{ByteAt(bytes, at)} | std::uint32_t{ByteAt(bytes, at + 1)} << 8;
}

// The name of an entry is in UTF-16 with a NUL.
bool IsEntry(Bytes entry, std::string_view name, unsigned type) {
    for (std::size_t at = 0; at < name.size(); ++at) {
        if (LittleEndian16(entry, 2 * at) != static_cast<unsigned char>(name[at])) return false;
    }
    return LittleEndian16(entry, 2 * name.size()) == 0 && ByteAt(entry, kTypeAt) == type;
}

// The sectors of a container, of which the header isn't one.
class Sectors {
public:
    explicit Sectors(Bytes container)
        : container_(container), shift_(LittleEndian16(container, kShiftAt)) {}

    bool AreKnown() const { return shift_ == 9 || shift_ == 12; }
    std::size_t Size() const { return std::size_t{1} << shift_; }

    // Cut at the end of the container.
    Bytes At(std::uint32_t number) const {
        const std::uint64_t at = (std::uint64_t{number} + 1) << shift_;
        if (at >= container_.size()) return {};
        const auto start = static_cast<std::size_t>(at);
        return container_.subspan(start, std::min(Size(), container_.size() - start));
    }

    // The one that follows in its stream. Tables beyond those that the header names aren't used.
    std::optional<std::uint32_t> After(std::uint32_t number) const {
        constexpr std::size_t kTablesAt = 76;
        constexpr std::size_t kTables = 109;
        const std::size_t table = number / (Size() / 4);
        if (table >= kTables) return {};
        const Bytes entries = At(LittleEndian32(container_, kTablesAt + 4 * table));
        const std::size_t at = number % (Size() / 4) * 4;
        if (at + 4 > entries.size()) return {};
        return LittleEndian32(entries, at);
    }

private:
    Bytes container_;
    std::uint32_t shift_;
};

// Empty when there is none of this name.
Bytes FindEntry(Bytes container, const Sectors& sectors, std::string_view name, unsigned type) {
    std::optional<std::uint32_t> number = LittleEndian32(container, kDirectoryAt);
    // The bound ends a directory whose chain of sectors loops.
    for (std::size_t left = container.size() / sectors.Size(); left > 0 && number; --left) {
        const Bytes sector = sectors.At(*number);
        for (std::size_t at = 0; at + kEntrySize <= sector.size(); at += kEntrySize) {
            const Bytes entry = sector.subspan(at, kEntrySize);
            if (IsEntry(entry, name, type)) return entry;
        }
        number = sectors.After(*number);
    }
    return {};
}

// Small streams are stored in one stream, that of the root, in sectors of their own.
Bytes SmallSector(Bytes container, const Sectors& sectors, std::uint32_t number) {
    const Bytes root = FindEntry(container, sectors, "Root Entry"sv, kRoot);
    if (root.empty()) return {};
    const std::size_t each = sectors.Size() / kSmallSize;
    std::optional<std::uint32_t> sector = LittleEndian32(root, kStartAt);
    for (std::size_t step = number / each; step > 0 && sector; --step) {
        if (step > container.size() / sectors.Size()) return {};
        sector = sectors.After(*sector);
    }
    const Bytes whole = sector ? sectors.At(*sector) : Bytes();
    const std::size_t at = number % each * kSmallSize;
    return at < whole.size() ? whole.subspan(at, std::min(kSmallSize, whole.size() - at)) : Bytes();
}

// The first bytes of a stream, at least 64 if it is that long; empty when there is none.
Bytes FirstSector(Bytes container, const Sectors& sectors, std::string_view name) {
    const Bytes entry = FindEntry(container, sectors, name, kStream);
    if (entry.empty()) return {};
    const std::uint32_t start = LittleEndian32(entry, kStartAt);
    return LittleEndian32(entry, kSizeAt) < kLeastInSectors ? SmallSector(container, sectors, start)
                                                            : sectors.At(start);
}

bool IsProtectedText(Bytes stream) {
    constexpr std::size_t kFlagsAt = 10;
    constexpr std::uint32_t kEncrypted = 0x0100;
    return stream.size() >= kFlagsAt + 2 && LittleEndian16(stream, 0) == 0xA5EC &&
           (LittleEndian16(stream, kFlagsAt) & kEncrypted) != 0;
}

// A table is a list of records; the one about its password is among the first.
bool IsProtectedTable(Bytes stream) {
    constexpr std::uint32_t kPassword = 0x002F;
    constexpr std::size_t kHeader = 4; // kind and size
    for (std::size_t at = 0; at + kHeader <= stream.size();) {
        if (LittleEndian16(stream, at) == kPassword) return true;
        at += kHeader + LittleEndian16(stream, at + 2);
    }
    return false;
}

} // namespace

bool NeedsPassword(Bytes container) {
    if (container.size() < kHeaderSize) return false;
    const Sectors sectors(container);
    if (!sectors.AreKnown()) return false;
    const auto first = [&](std::string_view name) { return FirstSector(container, sectors, name); };
    return IsProtectedText(first("WordDocument"sv)) || IsProtectedTable(first("Workbook"sv)) ||
           IsProtectedTable(first("Book"sv)) ||
           !FindEntry(container, sectors, "EncryptedSummary"sv, kStream).empty(); // of slides
}

} // namespace transforms::documents
