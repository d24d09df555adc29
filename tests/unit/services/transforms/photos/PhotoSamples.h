// Photos for the tests of conversions: four quarters, red, green, blue and white, so that any turn
// shows, and what becomes of them.
#pragma once

#include <string>
#include <vector>

#include "services/transforms/photos/ConvertPhoto.h"
#include "tests/unit/services/transforms/pictures/TestRasters.h"

namespace obtest {

inline constexpr unsigned kPhotoWidth = 96, kPhotoHeight = 64;

// Upright once it is turned by the EXIF orientation. Of 3 channels, or 4 with alpha 255.
Raster Quarters(unsigned orientation = 1, unsigned channels = 3, unsigned bits = 8);

struct ConvertedPhoto {
    transforms::PictureOutcome outcome{};
    PictureBytes file;

    bool IsPng() const { return !file.empty() && file[0] == 0x89; }
    // A result is a JPEG or a PNG.
    bool IsAsReported() const {
        const bool isJpeg = file.size() > 2 && file[0] == 0xFF && file[1] == 0xD8;
        return outcome != transforms::PictureOutcome::Written || isJpeg || IsPng();
    }
    Raster Pixels() const; // of a JPEG or a PNG
    std::string Exif() const;
    std::string Profile() const; // of a JPEG of one profile marker
};

// With the library for HEIC beside the test.
transforms::PhotoRequest PhotoRequestOfTest();
ConvertedPhoto Convert(const PictureBytes& file,
                       const transforms::PhotoRequest& request = PhotoRequestOfTest(),
                       const transforms::PictureControl& control = {});

// The colours are those of Quarters, but for what coding takes.
void ExpectQuarters(const Raster& raster, int most = 12);

// A file of the folder that make_photos.py fills.
PictureBytes PhotoSample(const std::wstring& name);

// A TIFF file in little-endian order, or a JPEG XR file's directory, from its entries.
struct TiffTag {
    unsigned tag, type; // 2 is text, 3 and 4 numbers of 16 and 32 bits, 7 bytes
    std::string value;
};
TiffTag ShortTag(unsigned tag, std::vector<unsigned> values);
TiffTag LongTag(unsigned tag, unsigned value);
TiffTag TextTag(unsigned tag, const std::string& text);
// The directory as it is from `offset` on, values included.
std::string TiffDirectory(std::vector<TiffTag> tags, std::size_t offset);
// One page of one strip. Size, strip and bits a sample are added to the tags.
PictureBytes PlainTiff(unsigned width, unsigned height, unsigned bits, unsigned channels,
                       const std::string& pixels, std::vector<TiffTag> tags);
// EXIF data with these entries in the first directory, in the EXIF directory and in that of places.
PictureBytes ExifData(std::vector<TiffTag> first, std::vector<TiffTag> exif,
                      std::vector<TiffTag> place = {});

} // namespace obtest
