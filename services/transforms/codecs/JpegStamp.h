// A stamp in the planes of a JPEG picture, so that no colour is converted outside it.
#pragma once

#include <cstdint>
#include <vector>

#include "services/transforms/codecs/JpegLibrary.h"
#include "services/transforms/raster/Stamp.h"

namespace transforms {

class JpegStamp {
public:
    // After the writer was started, whose size and sampling count. The stamp is as it is stored.
    // Throws PictureFailure with Unsupported for a sampling that no camera writes.
    JpegStamp(const PlacedStamp& stamp, const JpegWriter& writer);

    // Changes a row of a component's plane; `samples` has all of its columns.
    void Blend(int component, std::uint32_t row, std::uint8_t* samples) const noexcept;

private:
    struct Plane {
        std::uint32_t left = 0, top = 0, width = 0, height = 0;
        std::vector<std::uint8_t> values, opaque; // one each a sample
    };

    std::vector<Plane> planes_;
};

} // namespace transforms
