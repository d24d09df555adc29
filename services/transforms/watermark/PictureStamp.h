// A picture as a watermark.
#pragma once

#include "services/transforms/raster/Stamp.h"
#include "services/transforms/watermark/StampFile.h"
#include "services/transforms/watermark/Watermark.h"

namespace transforms {

// The longer side of the picture that a stamp is made of, as it is laid over a picture or page: a
// quarter of the shorter side in a corner, a half in the centre.
std::uint32_t StampSide(PictureSize shown, WatermarkPlace place) noexcept;

// Keeps its shape, is made larger or smaller as the picture needs it, and upright. Any thread.
class PictureStamp final : public Stamp {
public:
    // `picture` isn't empty.
    PictureStamp(StampPixels picture, WatermarkLook look);
    PlacedStamp For(PictureSize shown) const override;
    std::optional<PlacedStamp> PlaceFor(PictureSize shown) const override;
    bool HasRoomIn(PictureSize size) const noexcept override;

private:
    PictureSize SizeIn(PictureSize shown) const noexcept;

    StampPixels picture_;
    WatermarkLook look_;
};

} // namespace transforms
