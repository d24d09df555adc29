// A photo in memory: turned upright, and looked at for transparent pixels.
#pragma once

#include "services/transforms/raster/PictureFile.h"
#include "services/transforms/raster/Raster.h"

namespace transforms {

// Reads all rows of 8 bits that `from` has. The rows come out upright, and without alpha when all
// pixels are opaque.
class KeptRows final : public RowReader {
public:
    // `orientation` is that of EXIF, 1 to 8. Throws PictureFailure.
    KeptRows(RowReader& from, unsigned orientation, bool zeroAlphaIsUnset,
             const PictureControl& control);

    const RasterForm& Form() const noexcept override { return form_; }
    void Read(std::uint8_t* row) override;

private:
    void ReadAll(RowReader& from, const PictureControl& control);
    void LookAtAlpha(const std::uint8_t* row) noexcept;

    PictureSize stored_;   // as `from` has it
    std::size_t channels_; // in memory
    bool isSwapped_, flipsX_, flipsY_;
    bool isOpaque_ = true, isAllClear_ = true;
    RasterForm form_;
    PictureBytes pixels_;
    std::size_t next_ = 0;
};

} // namespace transforms
