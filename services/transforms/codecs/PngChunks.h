// The chunks of a PNG file that are no pixels: which are kept, and whether the file is an
// animation.
#pragma once

#include <array>
#include <vector>

#include "services/transforms/raster/PictureControl.h"
#include "services/transforms/raster/PictureFile.h"

namespace transforms {

struct PngChunk {
    std::array<std::uint8_t, 5> type; // four letters and a zero
    PictureBytes data;
    bool isAfterPixels;
};

struct PngChunks {
    bool isAnimated = false;
    // Profile and other words on colours, resolution, EXIF, texts and time, in the file's order.
    // The size in EXIF data is still the old one.
    std::vector<PngChunk> kept;

    // The first one of a type, which is four letters; null when the file has none.
    const PictureBytes* Find(const char* type) const noexcept;
    std::uint16_t Orientation() const noexcept; // of the EXIF data, as ExifValues.h counts it
};

// Reads the file from chunk to chunk, without its pixels. Throws PictureFailure.
PngChunks ScanPng(PictureSource& source, const PictureControl& control);

} // namespace transforms
