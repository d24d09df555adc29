// EXIF data are a TIFF file without pixels.
#include "services/transforms/pictures/ExifSize.h"

#include <cstddef>

namespace transforms {
namespace {

// Numbers of EXIF data in their own byte order. Reads outside the data are 0, writes there are
// none.
class ExifBytes {
public:
    explicit ExifBytes(std::span<std::uint8_t> bytes) noexcept
        : bytes_(bytes), little_(bytes.size() > 1 && bytes[0] == 'I') {}

    bool Has(std::size_t at, std::size_t count) const noexcept {
        return at <= bytes_.size() && count <= bytes_.size() - at;
    }
    std::uint32_t Get(std::size_t at, int count) const noexcept {
        std::uint32_t value = 0;
        for (int i = 0; Has(at, count) && i < count; ++i)
            value = value << 8 | bytes_[at + (little_ ? count - 1 - i : i)];
        return value;
    }
    void Set(std::size_t at, int count, std::uint32_t value) noexcept {
        for (int i = 0; Has(at, count) && i < count; ++i)
            bytes_[at + (little_ ? i : count - 1 - i)] =
                static_cast<std::uint8_t>(value >> (8 * i));
    }

private:
    std::span<std::uint8_t> bytes_;
    bool little_;
};

const std::uint32_t ExifDirectory = 0x8769, PixelsAcross = 0xA002, PixelsDown = 0xA003;
const std::uint32_t Short = 3, Long = 4;

// The place of the directory's entry with that tag, or 0.
std::size_t FindEntry(const ExifBytes& exif, std::size_t directory, std::uint32_t tag) noexcept {
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
    const bool isExif = bytes.size() > 8 && bytes[0] == bytes[1] && exif.Get(2, 2) == 42;
    const std::size_t entry = isExif ? FindEntry(exif, exif.Get(4, 4), ExifDirectory) : 0;
    if (!entry) return;
    const std::size_t directory = exif.Get(entry + 8, 4);
    SetEntry(exif, directory, PixelsAcross, size.width);
    SetEntry(exif, directory, PixelsDown, size.height);
}

} // namespace transforms
