// Rows of interleaved samples, and the work that all forms but JPEG share: a reader's rows are
// decoded on one thread, shrunk on the caller's and passed on to a writer.
#pragma once

#include <cstddef>
#include <cstdint>

#include "services/transforms/raster/PictureControl.h"
#include "services/transforms/raster/ShrinkStep.h"

namespace transforms {

struct RasterForm {
    PictureSize size;
    unsigned channels = 0;
    unsigned bits = 8; // or 16, in the processor's order
    // The last channel is the opacity of a pixel: colours count by it when they are averaged, so
    // that those of pixels that nobody sees don't come out.
    bool hasAlpha = false;
    bool isPremultiplied = false; // the colours were multiplied by alpha already
    bool hasOtherChannel = false; // the last channel is neither a colour nor alpha
    bool isBlueFirst = false;     // of three or four channels; otherwise red is first
    bool isInk = false;           // 0 is white: ink of CMYK, and grey of some TIFF files

    unsigned ColourChannels() const noexcept { return channels - (hasAlpha || hasOtherChannel); }
    std::size_t SampleCount() const noexcept {
        return static_cast<std::size_t>(size.width) * channels;
    }
    std::size_t RowBytes() const noexcept { return SampleCount() * bits / 8; }
};

// Both throw PictureFailure. Used by one thread each, but for their construction.
class RowReader {
public:
    virtual ~RowReader() = default;
    virtual const RasterForm& Form() const noexcept = 0;
    virtual void Read(std::uint8_t* row) = 0; // the next row
};

class RowWriter {
public:
    virtual ~RowWriter() = default;
    virtual void Write(const std::uint8_t* row) = 0; // the next row
};

// Passes on to.height rows of to.width pixels; rows of an unchanged size as they are.
void ShrinkRows(RowReader& reader, RowWriter& writer, PictureSize to,
                const PictureControl& control);

} // namespace transforms
