// PNG, TIFF, WebP and BMP files for tests, and decoders of them.
#pragma once

#include <string>
#include <vector>

#include "tests/unit/services/transforms/pictures/TestPictures.h"

namespace obtest {

using Chunks =
    std::vector<std::pair<std::string, std::string>>; // type and contents, in the file's order

struct PngMaking {
    bool interlaced = false;
    Chunks chunks; // before the pixels
};
PictureBytes MakePng(const Raster& raster, const PngMaking& making = {});
// Each sample is an index into the colours: 8 bits a pixel.
PictureBytes MakePalettePng(const Raster& indices, const std::vector<std::uint32_t>& colours);
Raster ParsePng(const PictureBytes& file);
Chunks PngChunksOf(const PictureBytes& file); // all but the pixels' and the ends

struct TiffMaking {
    int compression = 1;
    bool tiled = false, bigEndian = false, premultiplied = false;
    int pages = 1;
    std::string profile, xmp, artist;
    int orientation = 1;
};
struct ReadTiff {
    Raster raster;
    std::string profile, xmp, artist;
    int compression = 0, orientation = 0, photometric = 0, extra = -1;
    bool bigEndian = false;
};
PictureBytes MakeTiff(const Raster& raster, const TiffMaking& making = {});
ReadTiff ParseTiff(const PictureBytes& file);

struct WebpMaking {
    bool lossless = false;
    int frames = 1;
    std::string profile, exif;
};
struct ReadWebp {
    Raster raster;
    std::string profile, exif;
    bool lossless = false;
};
PictureBytes MakeWebp(const Raster& raster, const WebpMaking& making = {});
ReadWebp ParseWebp(const PictureBytes& file);

struct BmpMaking {
    bool topDown = false, alpha = false;
    std::string profile;
};
// Of 3 or 4 channels; 1 channel makes a grey palette.
PictureBytes MakeBmp(const Raster& raster, const BmpMaking& making = {});
struct ReadBmp {
    Raster raster;
    bool topDown = false;
    std::string profile;
};
ReadBmp ParseBmp(const PictureBytes& file);

} // namespace obtest
