#include "services/transforms/photos/CarriedExif.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace transforms {
namespace {

constexpr std::uint32_t kOrientation = 0x112, kExifDirectory = 0x8769, kPlaceDirectory = 0x8825;
constexpr std::uint32_t kAcross = 0xA002, kDown = 0xA003;
constexpr std::uint32_t kShort = 3, kLong = 4;
// Of the first directory: texts about the picture, camera and author, dates and resolution.
constexpr std::uint32_t kFirstTags[] = {0x10E, 0x10F, 0x110, 0x11A, 0x11B,
                                        0x128, 0x131, 0x132, 0x13B, 0x8298};
// Of the EXIF directory: maker notes, the directory for exchange between programs, and the sizes,
// which are written anew.
constexpr std::uint32_t kLeftOut[] = {0x927C, 0xA005, kAcross, kDown};
constexpr std::uint64_t kLargestValue = 4096;
constexpr std::size_t kMostBytes = 60000; // of a JPEG marker's 65,533

struct NewEntry {
    std::uint32_t tag, type, count;
    PictureBytes value;
};

// Writes directories one after the other, each with its values after it.
class ExifWriter {
public:
    explicit ExifWriter(bool isLittle) : isLittle_(isLittle) {
        const char begin = isLittle ? 'I' : 'M';
        bytes_ = {static_cast<std::uint8_t>(begin), static_cast<std::uint8_t>(begin)};
        Put(42, 2);
        Put(8, 4);
    }

    std::uint32_t End() const noexcept { return static_cast<std::uint32_t>(bytes_.size()); }
    PictureBytes Take() noexcept { return std::move(bytes_); }

    PictureBytes Number(std::uint32_t value, std::size_t count) const {
        PictureBytes bytes;
        for (std::size_t i = 0; i < count; ++i)
            bytes.push_back(
                static_cast<std::uint8_t>(value >> 8 * (isLittle_ ? i : count - 1 - i)));
        return bytes;
    }

    static std::uint32_t SizeOf(const std::vector<NewEntry>& entries) noexcept {
        std::size_t size = 2 + 12 * entries.size() + 4;
        for (const NewEntry& entry : entries)
            if (entry.value.size() > 4) size += Even(entry.value.size());
        return static_cast<std::uint32_t>(size);
    }

    void Write(std::vector<NewEntry> entries) {
        std::ranges::sort(entries, {}, &NewEntry::tag);
        std::uint32_t value = End() + static_cast<std::uint32_t>(2 + 12 * entries.size() + 4);
        Put(static_cast<std::uint32_t>(entries.size()), 2);
        for (const NewEntry& entry : entries) {
            Put(entry.tag, 2);
            Put(entry.type, 2);
            Put(entry.count, 4);
            if (entry.value.size() <= 4) {
                Append(entry.value, 4);
                continue;
            }
            Put(value, 4);
            value += static_cast<std::uint32_t>(Even(entry.value.size()));
        }
        Put(0, 4); // no further directory
        for (const NewEntry& entry : entries)
            if (entry.value.size() > 4) Append(entry.value, Even(entry.value.size()));
    }

private:
    static std::size_t Even(std::size_t size) noexcept { return size + size % 2; }
    void Put(std::uint32_t value, std::size_t count) { Append(Number(value, count), count); }
    void Append(const PictureBytes& value, std::size_t room) {
        bytes_.insert(bytes_.end(), value.begin(), value.end());
        bytes_.resize(bytes_.size() + room - value.size());
    }

    bool isLittle_;
    PictureBytes bytes_;
};

bool IsFirstTag(std::uint32_t tag) noexcept {
    return std::ranges::find(kFirstTags, tag) != std::end(kFirstTags);
}
bool IsExifTag(std::uint32_t tag) noexcept {
    return tag >= 0x8000 && std::ranges::find(kLeftOut, tag) == std::end(kLeftOut);
}
bool IsPlaceTag(std::uint32_t tag) noexcept { return tag <= 0x1F; }

// The entries of one directory that are carried, each tag once, as far as they fit into `room`.
std::vector<NewEntry> Carried(const TiffDirectories& from, std::uint32_t directory,
                              bool (*isCarried)(std::uint32_t), std::size_t& room) {
    std::vector<NewEntry> carried;
    for (const TiffEntry& entry : from.Entries(directory)) {
        const std::size_t size = 14 + static_cast<std::size_t>(std::min(entry.size, kLargestValue));
        const bool isNew = std::ranges::find(carried, entry.tag, &NewEntry::tag) == carried.end();
        if (!isCarried(entry.tag) || entry.size > kLargestValue || !isNew || size > room) continue;
        room -= size;
        carried.push_back({entry.tag, entry.type, entry.count, from.Value(entry)});
    }
    return carried;
}

std::uint32_t DirectoryOf(const TiffDirectories& from, const std::vector<TiffEntry>& first,
                          std::uint32_t tag) {
    const TiffEntry* entry = FindEntry(first, tag);
    return entry ? from.Number(*entry) : 0;
}

} // namespace

PictureBytes CarriedExif(const TiffDirectories& from, PictureSize size) {
    const auto entries = from.Entries(from.First());
    std::size_t room = kMostBytes;
    auto first = Carried(from, from.First(), &IsFirstTag, room);
    auto exif = Carried(from, DirectoryOf(from, entries, kExifDirectory), &IsExifTag, room);
    auto place = Carried(from, DirectoryOf(from, entries, kPlaceDirectory), &IsPlaceTag, room);
    if (first.empty() && exif.empty() && place.empty()) return {};
    ExifWriter writer(from.IsLittleEndian());
    exif.push_back({kAcross, kLong, 1, writer.Number(size.width, 4)});
    exif.push_back({kDown, kLong, 1, writer.Number(size.height, 4)});
    first.push_back({kOrientation, kShort, 1, writer.Number(1, 2)});
    first.push_back({kExifDirectory, kLong, 1, writer.Number(0, 4)});
    if (!place.empty()) first.push_back({kPlaceDirectory, kLong, 1, writer.Number(0, 4)});
    const std::uint32_t exifAt = writer.End() + ExifWriter::SizeOf(first);
    const std::uint32_t placeAt = exifAt + ExifWriter::SizeOf(exif);
    for (NewEntry& entry : first) {
        if (entry.tag == kExifDirectory) entry.value = writer.Number(exifAt, 4);
        if (entry.tag == kPlaceDirectory) entry.value = writer.Number(placeAt, 4);
    }
    writer.Write(std::move(first));
    writer.Write(std::move(exif));
    if (!place.empty()) writer.Write(std::move(place));
    return writer.Take();
}

PictureBytes CarriedExif(std::span<const std::uint8_t> from, PictureSize size) {
    MemorySource source(from);
    return CarriedExif(TiffDirectories(source), size);
}

unsigned ExifOrientation(const TiffDirectories& from) {
    const auto entries = from.Entries(from.First());
    const TiffEntry* entry = FindEntry(entries, kOrientation);
    const std::uint32_t orientation = entry ? from.Number(*entry) : 1;
    return orientation >= 1 && orientation <= 8 ? orientation : 1;
}

std::span<const std::uint8_t> WithoutExifMark(std::span<const std::uint8_t> bytes) noexcept {
    const bool isMarked = bytes.size() > 6 && std::memcmp(bytes.data(), "Exif\0\0", 6) == 0;
    return bytes.subspan(isMarked ? 6 : 0);
}

} // namespace transforms
