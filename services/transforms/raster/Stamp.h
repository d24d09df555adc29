// What is laid over a picture before it is coded: a watermark. Its colours are sRGB; a picture's
// profile isn't applied to them.
#pragma once

#include <cstdint>
#include <optional>

#include "services/transforms/raster/PictureFile.h"
#include "services/transforms/raster/ShrinkStep.h"

namespace transforms {

// Red, green, blue and how opaque, 8 bits each, the colours not multiplied by the fourth. `left`
// and `top` are within the picture, and so is all of it.
struct PlacedStamp {
    std::uint32_t left = 0, top = 0;
    PictureSize size;
    PictureBytes pixels;

    const std::uint8_t* At(std::uint32_t x, std::uint32_t y) const noexcept {
        return &pixels[(std::size_t{y} * size.width + x) * 4];
    }
};

// Made anew for each size of picture. Called by the thread that codes a picture.
class Stamp {
public:
    virtual ~Stamp() = default;
    // For a picture that is shown with that size. An empty one changes nothing. Throws
    // PictureFailure.
    virtual PlacedStamp For(PictureSize shown) const = 0;
    // Size and place of the stamp without its pixels, if that is one picture that is only scaled:
    // then one of them can be drawn at every size. Nothing for a stamp that is drawn anew.
    virtual std::optional<PlacedStamp> PlaceFor(PictureSize) const { return {}; }
    // False for a picture whose stamp is empty, however the picture is turned.
    virtual bool HasRoomIn(PictureSize) const noexcept { return true; }
};

// The stamp in the order of the stored pixels, for a picture of `stored` that its orientation (1 to
// 8, as in EXIF) turns when it is shown: the stamp is upright then. What reaches over the edge is
// cut off. Throws PictureFailure.
PlacedStamp StampAsStored(const Stamp& stamp, PictureSize stored, std::uint16_t orientation);

} // namespace transforms
