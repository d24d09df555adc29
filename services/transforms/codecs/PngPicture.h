// PNG pictures, row by row; interlaced ones are decoded whole and written without interlacing.
// Kept: depth of 8 or 16 bits, grey or colour, alpha, profile and texts. Palettes and less than 8
// bits become 8 bits a channel, as averages of their colours have no place in them.
#pragma once

#include <memory>

#include "services/transforms/raster/PictureControl.h"
#include "services/transforms/raster/PictureFile.h"
#include "services/transforms/raster/Raster.h"
#include "services/transforms/raster/ShrinkStep.h"

namespace transforms {

// Each throws PictureFailure; ShrinkPng uses a second thread.
PictureSize PngSize(PictureSource& source, const PictureControl& control);
void ShrinkPng(PictureSource& source, PictureTarget& target, const ShrinkStep& step,
               const PictureControl& control);

// The rows in grey or colour, with or without alpha, of 8 or 16 bits: palettes and less than 8 bits
// are expanded. `source` and `control` must outlive them. Throws PictureFailure.
std::unique_ptr<RowReader> OpenPngRows(PictureSource& source, const PictureControl& control);

// The rows as they are stored, for a conversion without loss. `source` and `control` must outlive
// them. Throws PictureFailure.
struct PngPixels {
    std::unique_ptr<RowReader> rows;
    PictureSize size;
    unsigned bits = 8;
    // Samples below 8 bits, and those that are indices, come as bytes: the rows' form has one
    // channel then, and its width counts bytes.
    bool isPacked = false;
    PictureBytes palette; // red, green and blue of each index; empty for samples of other kinds
};
PngPixels OpenPngPixels(PictureSource& source, const PictureControl& control);

} // namespace transforms
