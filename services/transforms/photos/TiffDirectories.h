// The directories of a TIFF file: EXIF data are one, JPEG XR and many raw photos are built alike.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "services/transforms/raster/PictureFile.h"

namespace transforms {

struct TiffEntry {
    std::uint32_t tag = 0;
    std::uint32_t type = 0;
    std::uint32_t count = 0;
    std::uint64_t at = 0;   // where the value is in the file
    std::uint64_t size = 0; // of the value, in bytes
};

// Null when there is none.
const TiffEntry* FindEntry(const std::vector<TiffEntry>& entries, std::uint32_t tag) noexcept;

// Reads what is whole and skips the rest: the file may be damaged. `source` must outlive the
// object. Its functions throw PictureFailure when the file can't be read. A file with 64-bit
// offsets has no directories here.
class TiffDirectories {
public:
    explicit TiffDirectories(PictureSource& source);

    bool IsLittleEndian() const noexcept { return isLittle_; }
    // The offset of the first directory; 0 for another file.
    std::uint32_t First() const noexcept { return first_; }
    // The entries of the directory at an offset, in the file's order. None for offset 0.
    std::vector<TiffEntry> Entries(std::uint32_t offset) const;
    // The first number of an entry of whole numbers; 0 for another one.
    std::uint32_t Number(const TiffEntry& entry) const;
    PictureBytes Value(const TiffEntry& entry) const;

private:
    std::uint32_t Get(std::uint64_t at, std::size_t count) const;

    PictureSource& source_;
    bool isLittle_ = false;
    std::uint32_t first_ = 0;
};

} // namespace transforms
