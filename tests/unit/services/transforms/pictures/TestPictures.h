// Pictures for tests, made without a file: something like a photograph, coded by the libraries
// themselves, and decoders that share no code with what is tested.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "services/transforms/raster/PictureFile.h"

namespace obtest {

using transforms::PictureBytes;

// Interleaved samples.
struct Raster {
    unsigned width = 0, height = 0, channels = 0, bits = 8; // 16 bits in the processor's order
    PictureBytes bytes;

    unsigned At(unsigned x, unsigned y, unsigned channel) const;
};

// Smooth shapes with some grain, differing with the seed. With 2 or 4 channels the last one is
// alpha.
Raster Photo(unsigned width, unsigned height, unsigned channels, unsigned bits = 8,
             unsigned seed = 1, unsigned grain = 16);

// The average of each cell of the coarser raster: what a good reduction comes close to.
Raster Averaged(const Raster& raster, unsigned width, unsigned height);

// The root of the mean squared difference, in 8-bit steps. Both of one shape.
double Difference(const Raster& one, const Raster& other);

struct JpegMaking {
    int quality = 90;
    int across = 2, down = 2; // sampling of the first component
    bool progressive = false;
    bool adobe = false;                               // 3 channels: stored as RGB; 4: as YCCK
    std::vector<std::pair<int, std::string>> markers; // code and contents
};
PictureBytes MakeJpeg(const Raster& raster, const JpegMaking& making = {});

// The same for a picture too large to be in memory. `row` returns the samples of row `y`, which are
// valid until its next call.
struct PictureShape {
    unsigned width = 0, height = 0, channels = 0;
};
PictureBytes MakeJpeg(const PictureShape& shape,
                      const std::function<const std::uint8_t*(unsigned y)>& row,
                      const JpegMaking& making = {});

struct ReadJpeg {
    Raster raster; // grey, RGB, or CMYK as it is stored
    bool isCmyk = false, sawAdobe = false;
    int across = 0, down = 0, table[64] = {};
    std::vector<std::pair<int, std::string>> markers;
};
// Throws std::runtime_error with the library's code.
ReadJpeg ParseJpeg(const PictureBytes& file);

// A segment with EXIF data: orientation 6 and a size.
std::string ExifOf(unsigned width, unsigned height);
std::string ProfileMarker(const std::string& profile);

} // namespace obtest
