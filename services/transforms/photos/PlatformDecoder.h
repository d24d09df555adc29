// Photos that only the system can decode: by its imaging component and the codecs that are
// installed there. JPEG XR is part of every Windows; HEIC, AVIF and raw photos need a codec.
#pragma once

#include "services/transforms/photos/PhotoColours.h"
#include "services/transforms/photos/PhotoKind.h"
#include "services/transforms/raster/PictureControl.h"

namespace transforms {

// Throws PictureFailure, Unsupported when the system has no codec for the file. The rows may be
// read in any thread; the object that has them is destroyed in the calling one.
DecodedPhoto DecodeByPlatform(PictureSource& source, PhotoKind kind, const PictureControl& control);

// What a failed HRESULT of the system means: Unsupported when a codec or a part of it is missing or
// can't be loaded, TooLarge, or Damaged for all others.
PictureOutcome OutcomeOfPlatform(long result) noexcept;

} // namespace transforms
