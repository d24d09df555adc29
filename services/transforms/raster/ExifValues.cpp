// EXIF data are a TIFF file without pixels.
#include "services/transforms/raster/ExifValues.h"

#include <algorithm>
#include <cstddef>

#include "services/transforms/raster/Numbers.h"

namespace transforms {
namespace {

// Numbers of EXIF data in their own byte order. Reads outside the data are 0.
template <class Byte>
class ExifReader {
public:
    explicit ExifReader(std::span<Byte> bytes) noexcept
        : bytes_(bytes), little_(bytes.size() > 1 && bytes[0] == 'I') {}

    bool IsExif() const noexcept {
        return bytes_.size() > 8 && bytes_[0] == bytes_[1] && Get(2, 2) == 42;
    }
    std::uint32_t MainDirectory() const noexcept { return Get(4, 4); }

    bool Has(std::size_t at, std::size_t count) const noexcept {
        return at <= bytes_.size() && count <= bytes_.size() - at;
    }
    std::uint32_t Get(std::size_t at, int count) const noexcept {
        if (!Has(at, count)) return 0;
        return StoredNumber(bytes_.subspan(at, static_cast<std::size_t>(count)), little_);
    }

protected:
    std::span<Byte> bytes_;
    bool little_;
};

// Writes outside the data are none.
class ExifBytes : public ExifReader<std::uint8_t> {
public:
    using ExifReader::ExifReader;

    void Set(std::size_t at, int count, std::uint32_t value) noexcept {
        for (int i = 0; Has(at, count) && i < count; ++i)
            bytes_[at + (little_ ? i : count - 1 - i)] =
                static_cast<std::uint8_t>(value >> (8 * i));
    }
};

const std::uint32_t Orientation = 0x0112, ExifDirectory = 0x8769;
const std::uint32_t PixelsAcross = 0xA002, PixelsDown = 0xA003;
const std::uint32_t Short = 3, Long = 4;

// The place of the directory's entry with that tag, or 0.
template <class Byte>
std::size_t FindEntry(const ExifReader<Byte>& exif, std::size_t directory,
                      std::uint32_t tag) noexcept {
    const std::uint32_t count = exif.Get(directory, 2);
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::size_t entry = directory + 2 + 12 * static_cast<std::size_t>(i);
        if (!exif.Has(entry, 12)) return 0;
        if (exif.Get(entry, 2) == tag) return entry;
    }
    return 0;
}

void SetEntry(ExifBytes& exif, std::size_t directory, std::uint32_t tag,
              std::uint32_t value) noexcept {
    const std::size_t entry = FindEntry(exif, directory, tag);
    if (!entry || exif.Get(entry + 4, 4) != 1) return;
    const std::uint32_t type = exif.Get(entry + 2, 2);
    if (type == Long) exif.Set(entry + 8, 4, value);
    if (type == Short && value <= 0xFFFF) exif.Set(entry + 8, 2, value);
}

} // namespace

void SetExifSize(std::span<std::uint8_t> bytes, PictureSize size) noexcept {
    ExifBytes exif(bytes);
    const std::size_t entry =
        exif.IsExif() ? FindEntry(exif, exif.MainDirectory(), ExifDirectory) : 0;
    if (!entry) return;
    const std::size_t directory = exif.Get(entry + 8, 4);
    SetEntry(exif, directory, PixelsAcross, size.width);
    SetEntry(exif, directory, PixelsDown, size.height);
}

std::uint16_t ExifOrientation(std::span<const std::uint8_t> bytes) noexcept {
    const ExifReader<const std::uint8_t> exif(bytes);
    const std::size_t entry =
        exif.IsExif() ? FindEntry(exif, exif.MainDirectory(), Orientation) : 0;
    if (!entry || exif.Get(entry + 2, 2) != Short) return kUprightOrientation;
    const std::uint32_t value = exif.Get(entry + 8, 2);
    return value >= 1 && value <= 8 ? static_cast<std::uint16_t>(value) : kUprightOrientation;
}

void DropExifThumbnail(std::span<std::uint8_t> bytes) noexcept {
    constexpr std::uint32_t kOffset = 0x0201, kLength = 0x0202;
    ExifBytes exif(bytes);
    if (!exif.IsExif()) return;
    const std::size_t first = exif.MainDirectory();
    const std::size_t link = first + 2 + 12 * static_cast<std::size_t>(exif.Get(first, 2));
    const std::size_t second = exif.Get(link, 4);
    if (second == 0) return;
    exif.Set(link, 4, 0);
    const std::size_t offset = FindEntry(exif, second, kOffset);
    const std::size_t length = FindEntry(exif, second, kLength);
    if (!offset || !length) return;
    const std::size_t begin = exif.Get(offset + 8, 4), count = exif.Get(length + 8, 4);
    if (!exif.Has(begin, count)) return;
    std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(begin), count, std::uint8_t{0});
}

void SetExifOrientation(std::span<std::uint8_t> bytes, std::uint16_t orientation) noexcept {
    ExifBytes exif(bytes);
    if (exif.IsExif()) SetEntry(exif, exif.MainDirectory(), Orientation, orientation);
}

} // namespace transforms
