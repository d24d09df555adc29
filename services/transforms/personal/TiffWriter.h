// Writes a TIFF anew: the pages' directories, then the values and pixels that stay.
#pragma once

#include "services/transforms/personal/ExtentMap.h"
#include "services/transforms/personal/TiffContent.h"

namespace transforms::personal {

// `map` has the extents that stay and gets their places. Byte order and kind are those of the old
// file. Nothing when offsets of the old file's kind can't name every place in the new one.
std::optional<PartList> WriteTiff(const TiffReader& reader, const TiffContent& content,
                                  ExtentMap& map);

} // namespace transforms::personal
