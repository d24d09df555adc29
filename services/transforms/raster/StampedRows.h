// Lays a stamp over rows on their way to a writer.
#pragma once

#include <cstdint>

#include "services/transforms/raster/Raster.h"
#include "services/transforms/raster/Stamp.h"

namespace transforms {

class StampedRows final : public RowWriter {
public:
    // `form` is that of the rows as they are written, with their final size. The writer must
    // outlive the object.
    StampedRows(RowWriter& writer, const RasterForm& form, PlacedStamp stamp);
    void Write(const std::uint8_t* row) override;

private:
    template <class Sample>
    void Blend(std::uint32_t y);

    RowWriter& writer_;
    RasterForm form_;
    PlacedStamp stamp_;
    PictureBytes row_;
    std::uint32_t next_ = 0;
};

// ShrinkRows, with the stamp of the step if there is one.
void ShrinkAndStampRows(RowReader& reader, RowWriter& writer, PictureSize to,
                        const ShrinkStep& step, std::uint16_t orientation,
                        const PictureControl& control);

} // namespace transforms
