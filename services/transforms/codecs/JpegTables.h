// How coarsely a JPEG picture is coded: the standard's tables at a step.
#pragma once

#include <array>

#include "services/transforms/codecs/JpegLibrary.h"
#include "services/transforms/raster/ShrinkStep.h"

namespace transforms {

// For brightness and for colours, between two percentages if the step asks for it. Changes the
// writer's tables, which the caller sets afterwards.
std::array<JQUANT_TBL, 2> StandardTables(JpegWriter& writer, const ShrinkStep& step);

// Each value the coarser of both, at most 255.
JQUANT_TBL CoarserTable(const JQUANT_TBL& one, const JQUANT_TBL& other) noexcept;

// Makes the writer's two tables as coarse as the step's, where they aren't already.
void CoarsenTables(JpegWriter& writer, const ShrinkStep& step);

} // namespace transforms
