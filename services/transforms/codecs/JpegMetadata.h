// The marker segments of a JPEG picture that are no image data: kept as they are, but for those
// that would be wrong after the picture shrank.
#pragma once

#include "services/transforms/codecs/JpegLibrary.h"
#include "services/transforms/raster/ShrinkStep.h"

namespace transforms {

// Before the header is read.
void KeepMarkers(JpegReader& reader);

// After the writer was started and before its first row. The index of further pictures in the file
// is left out, as those pictures are, and so is a thumbnail of a picture that looks different now.
void CopyMarkers(const JpegReader& reader, JpegWriter& writer, PictureSize size, bool isStamped);

// The colour profile; empty for none and for one that is damaged. After the header was read.
PictureBytes JpegProfile(JpegReader& reader);

// How the picture is shown, as ExifValues.h counts it. After the header was read.
std::uint16_t JpegOrientation(const JpegReader& reader) noexcept;

} // namespace transforms
